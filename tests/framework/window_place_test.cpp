#include "framework/ui/window_place.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QScreen>

#include "platform/command_line.h"
#include "platform/user_settings.h"
#include "tests/support/scripted_dialogs.h"

namespace {

const QString kName = QStringLiteral("KoeIkkuna");

class WindowPlace : public ::testing::Test {
  protected:
    WindowPlace() { platform::userSettings()->clear(); }
    ~WindowPlace() override {
        platform::setParameters({});
        platform::userSettings()->clear();
    }
    static void showOnce(QWidget& window, const QPoint& corner) {
        window.setGeometry(QRect(corner, QSize(400, 300)));
        window.show();
        window.hide();
    }
    test::ScriptedDialogs m_dialogs;  // makes the program believe that a user is there
};

TEST_F(WindowPlace, IsRestoredOnTheScreenThatIsLeft) {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    for (const QPoint& corner : {QPoint(120, 90), screen.bottomRight() + QPoint(3000, 2000)}) {
        platform::userSettings()->clear();
        QWidget first;
        EXPECT_FALSE(framework::rememberPlace(first, kName));
        showOnce(first, corner);
        QWidget window;
        EXPECT_TRUE(framework::rememberPlace(window, kName));
        window.show();
        EXPECT_TRUE(screen.contains(window.geometry())) << window.geometry().x();
        EXPECT_EQ(window.geometry().contains(corner), screen.contains(corner));
        EXPECT_EQ(window.size(), QSize(400, 300));
        QWidget other;
        EXPECT_FALSE(framework::rememberPlace(other, kName + QStringLiteral("2")));
    }
}

TEST_F(WindowPlace, AnUnattendedRunNeitherReadsNorWrites) {
    for (const bool unattended : {true, false, true}) {
        platform::setParameters(unattended ? QStringList(QStringLiteral("/E")) : QStringList());
        const bool stored = !platform::userSettings()->allKeys().isEmpty();
        QWidget window;
        EXPECT_FALSE(framework::rememberPlace(window, kName));
        showOnce(window, QPoint(10, 20));
        EXPECT_EQ(!platform::userSettings()->allKeys().isEmpty(), stored || !unattended);
    }
}

TEST_F(WindowPlace, DamagedSettingsAreIgnored) {
    platform::userSettings()->setValue(QStringLiteral("Paikat/") + kName, QByteArray("rikki"));
    QWidget window;
    EXPECT_FALSE(framework::rememberPlace(window, kName));
}

}  // namespace
