#include "framework/ui/window_place.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QScreen>

#include "app/company/command_line.h"
#include "app/company/user_settings.h"
#include "tests/support/scripted_dialogs.h"

namespace {

const QString kName = QStringLiteral("KoeIkkuna");

class WindowPlace : public ::testing::Test {
  protected:
    WindowPlace() { company::userSettings()->clear(); }
    ~WindowPlace() override {
        company::setParameters({});
        company::userSettings()->clear();
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
    company::setParameters({QStringLiteral("/E")});
    showOnce();
    EXPECT_TRUE(company::userSettings()->allKeys().isEmpty());
    company::setParameters({});
    showOnce();
    EXPECT_FALSE(company::userSettings()->allKeys().isEmpty());
    company::setParameters({QStringLiteral("/E")});
    QWidget window;
    EXPECT_FALSE(framework::rememberPlace(window, kName));
}

TEST_F(WindowPlace, DamagedSettingsAreNoPlace) {
    company::userSettings()->setValue(QStringLiteral("Paikat/") + kName, QByteArray("rikki"));
    QWidget window;
    EXPECT_FALSE(framework::rememberPlace(window, kName));
}

}  // namespace
