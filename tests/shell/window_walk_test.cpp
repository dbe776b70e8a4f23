#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

#include "framework/ui/about.h"
#include "framework/ui/add_company_dialog.h"
#include "framework/ui/company_choice.h"
#include "framework/ui/definition_window.h"
#include "framework/ui/demo_company_dialog.h"
#include "framework/ui/help.h"
#include "framework/ui/program_style.h"
#include "framework/ui/splash.h"
#include "framework/ui/work_dialog.h"
#include "search/group_haku.h"
#include "search/tuote_haku.h"
#include "shell/log/log_window.h"
#include "shell/main_form.h"
#include "shell/schedule/schedule_dialog.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "tests/support/window_checks.h"
#include "vatchange/views/history_window.h"

// Checks of every window of the program. ctest runs this at 100 and 150 % (QT_SCALE_FACTOR).

namespace {

using vatchange::TAlvMuutosLomake;
using Window = std::unique_ptr<QWidget>;

struct Case {
    const char* name;
    std::function<Window(const test::ShopCompany&, TAlvMuutosLomake&)> make;
    bool tabs = true;  // false: no focusable control
};

template <class Made>
Window plain(const test::ShopCompany&, TAlvMuutosLomake&) {
    return std::make_unique<Made>();
}

const Case kWindows[] = {
    {"main window", plain<shell::TMainForm>},
    {"change form",
     [](const test::ShopCompany& shop, TAlvMuutosLomake&) -> Window {
         return std::make_unique<TAlvMuutosLomake>(shop.database());
     }},
    {"definitions",
     [](const test::ShopCompany&, TAlvMuutosLomake& form) -> Window {
         return std::make_unique<framework::TRapMaarForm>(form);
     }},
    {"sub groups", plain<search::TArHakuForm>},
    {"product groups", plain<search::TTrHakuForm>},
    {"main groups", plain<search::TPrHakuForm>},
    {"products", plain<search::TTuoteHakuForm>},
    {"company choice", plain<framework::TYritysValinta>},
    {"demo company", plain<framework::DemoCompanyDialog>},
    {"add company", plain<framework::AddCompanyDialog>},
    {"log", plain<shell::LogWindow>},
    {"schedule",
     [](const test::ShopCompany&, TAlvMuutosLomake&) -> Window {
         return std::make_unique<shell::ScheduleDialog>(QStringLiteral("Kauppa"),
                                                        company::BatchList{QStringLiteral("A")});
     }},
    {"history",
     [](const test::ShopCompany& shop, TAlvMuutosLomake&) -> Window {
         return std::make_unique<vatchange::HistoryWindow>(shop.database(), nullptr);
     }},
    {"work",
     [](const test::ShopCompany&, TAlvMuutosLomake&) -> Window {
         return std::make_unique<framework::WorkDialog>(nullptr, QStringLiteral("Varmuuskopio"));
     }},
    {"help",
     [](const test::ShopCompany&, TAlvMuutosLomake&) -> Window {
         return std::make_unique<framework::HelpWindow>(framework::HelpManual::compiledIn());
     }},
    {"about",
     [](const test::ShopCompany&, TAlvMuutosLomake&) -> Window {
         return std::make_unique<framework::AboutBox>(QStringLiteral("Taksavaihe"),
                                                      QStringLiteral("Versio 1.9"), nullptr);
     }},
    {"splash", plain<framework::TZAVLogoForm>, false},
};

QPalette darkPalette() {
    QPalette dark(QColor(49, 54, 59), QColor(42, 46, 50));
    dark.setColor(QPalette::Base, QColor(27, 30, 32));
    return dark;
}

class WindowWalk : public ::testing::TestWithParam<Case> {
  protected:
    WindowWalk() : m_light(QApplication::palette()) {
        QApplication::setStyle(new framework::ProgramStyle);
    }
    ~WindowWalk() override {
        QApplication::setPalette(m_light);
        QApplication::setStyle(QStringLiteral("Fusion"));
    }

    QPalette m_light;
    test::ScriptedDialogs m_dialogs;
    test::ShopCompany m_shop;
    TAlvMuutosLomake m_form{m_shop.database()};
};

TEST_P(WindowWalk, TextsFitAreReadableAndControlsAreReachedAndNamed) {
    for (const QPalette& palette : {m_light, darkPalette()}) {
        QApplication::setPalette(palette);
        const Window window = GetParam().make(m_shop, m_form);
        window->setAttribute(Qt::WA_DeleteOnClose, false);
        window->show();
        QApplication::setActiveWindow(window.get());
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        EXPECT_FALSE(GetParam().tabs && window->windowTitle().isEmpty());
        // 1920 x 1080 at 150 %, less task bar and title bar
        EXPECT_LE(window->minimumSizeHint().width(), 1276);
        EXPECT_LE(window->minimumSizeHint().height(), 664);
        test::expectNothingClipped(*window);
        test::expectReadable(*window);
        test::expectNoMnemonicClash(*window);
        test::expectAccessibleNames(*window);
        if (GetParam().tabs)
            test::expectTabGoesAround(*window);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Program, WindowWalk, ::testing::ValuesIn(kWindows), [](const auto& window) {
        return QString::fromLatin1(window.param.name).remove(QLatin1Char(' ')).toStdString();
    });

}  // namespace
