#include <gtest/gtest.h>

#include <QApplication>

#include "tests/support/temporary_settings.h"

// One application object for all tests of a program, offscreen and with settings of its own.
int main(int argc, char** argv) {
    qputenv("XDG_CONFIG_HOME", test::settingsFolder().toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (qEnvironmentVariableIsEmpty("TAKSAVAIHE_BIN"))  // where the programs under test stand
        qputenv("TAKSAVAIHE_BIN", QCoreApplication::applicationDirPath().toLocal8Bit());
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
