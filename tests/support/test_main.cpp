#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>

// One application object per test program, offscreen and with its own settings.
int main(int argc, char** argv) {
    static const QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (qEnvironmentVariableIsEmpty("TAKSAVAIHE_BIN"))  // folder of the programs under test
        qputenv("TAKSAVAIHE_BIN", QCoreApplication::applicationDirPath().toLocal8Bit());
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
