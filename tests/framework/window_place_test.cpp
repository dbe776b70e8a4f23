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
    test::ScriptedDialogs m_dialogs;  // a person is there
};

TEST_F(WindowPlace, IsTheSameTheNextTime) {
    const QRect place(120, 90, 400, 300);
    {
        QWidget window;
        EXPECT_FALSE(framework::rememberPlace(window, kName));
        window.setGeometry(place);
        window.show();
        window.hide();
    }
    QWidget window;
    EXPECT_TRUE(framework::rememberPlace(window, kName));
    EXPECT_EQ(window.geometry(), place);
    QWidget other;
    EXPECT_FALSE(framework::rememberPlace(other, kName + QStringLiteral("2")));
}

TEST_F(WindowPlace, IsOnAScreenAfterAScreenHasGone) {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    {
        QWidget window;
        framework::rememberPlace(window, kName);
        window.setGeometry(screen.right() + 3000, screen.bottom() + 2000, 400, 300);
        window.show();
        window.hide();
    }
    QWidget window;
    framework::rememberPlace(window, kName);
    window.show();
    EXPECT_TRUE(screen.contains(window.geometry())) << window.geometry().x();
    EXPECT_EQ(window.size(), QSize(400, 300));
}

TEST_F(WindowPlace, AnUnattendedRunNeitherReadsNorWrites) {
    const auto showOnce = [] {
        QWidget window;
        framework::rememberPlace(window, kName);
        window.setGeometry(10, 20, 400, 300);
        window.show();
        window.hide();
    };
    platform::setParameters({QStringLiteral("/E")});
    showOnce();
    EXPECT_TRUE(platform::userSettings()->allKeys().isEmpty());
    platform::setParameters({});
    showOnce();
    EXPECT_FALSE(platform::userSettings()->allKeys().isEmpty());
    platform::setParameters({QStringLiteral("/E")});
    QWidget window;
    EXPECT_FALSE(framework::rememberPlace(window, kName));
}

TEST_F(WindowPlace, DamagedSettingsAreNoPlace) {
    platform::userSettings()->setValue(QStringLiteral("Paikat/") + kName, QByteArray("rikki"));
    QWidget window;
    EXPECT_FALSE(framework::rememberPlace(window, kName));
}

}  // namespace
