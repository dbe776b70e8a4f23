#include <gtest/gtest.h>

#include <QProgressBar>
#include <QTest>
#include <QTimer>

#include "framework/ui/definition_window.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "vatchange/definition/definition_codec.h"
#include "vatchange/form/change_form.h"

using vatchange::TAlvMuutosLomake;

namespace {

QString str(const char* utf8) {
    return QString::fromUtf8(utf8);
}

// Runs take long enough for the window to breathe: every product is stored to the disk by itself.
constexpr int kProducts = 400;

class FormRun : public ::testing::Test {
  protected:
    FormRun() : m_form(m_shop.database()) {
        m_form.setAttribute(Qt::WA_DeleteOnClose, false);
        m_form.controls().sourceClass->setValue(3);
        m_form.controls().targetClass->setValue(6);
        m_form.controls().keep(1)->click();
        m_form.show();
    }
    QString changed() const {
        return m_shop.text(str("select count(*) from TUOTE where LVV = 6 and HINTA = 10.12"));
    }
    // Does something while the run goes on, each time the window breathes, until it says true.
    void whileRunning(const std::function<bool()>& action) {
        m_timer.callOnTimeout(&m_form, [this, action] {
            if (m_form.isRunning() && action()) {
                ++m_done;
                m_timer.stop();
            }
        });
        m_timer.start(1);
    }

    test::ScriptedDialogs m_dialogs;
    test::ShopCompany m_shop;
    TAlvMuutosLomake m_form;
    QTimer m_timer;
    int m_done = 0;
};

TEST_F(FormRun, ChangesTheProductsAndTellsSo) {
    m_shop.addProducts(3);
    m_dialogs.expectMessage(str("Tuotetiedot muutettu ( 3 kpl)"));
    QTest::mouseClick(m_form.Esikatsele, Qt::LeftButton);
    EXPECT_EQ(changed(), str("3"));
    EXPECT_EQ(m_form.findChild<QLabel*>(str("StatusLabel"))->text(),
              str("Muutos valmis, tuotteita muutettu 3"));
    EXPECT_TRUE(m_form.Esikatsele->isEnabled());
    EXPECT_FALSE(m_form.findChild<QWidget*>(str("Keskeyta"))->isEnabled());
}

TEST_F(FormRun, RefusalIsShownAndLoggedAndLeavesTheFormEditable) {
    m_shop.addProducts(1);
    m_form.controls().targetClass->setValue(3);
    const QString text = str("Lähteen ALV -luokka on sama kuin kohteen ALV -luokka!");
    m_dialogs.expectMessage(text);
    const auto result = m_form.EsikatseleClick();
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->refused);
    EXPECT_EQ(m_shop.logMessages(), QStringList(text));
    EXPECT_TRUE(m_form.controls().targetClass->isEnabled());

    // a batch sees the same in the log alone
    m_form.Unattended = true;
    m_form.EsikatseleClick();
    EXPECT_EQ(m_shop.logMessages(), QStringList({text, text}));
}

TEST_F(FormRun, AsksBeforeItRunsADefinitionWithProblems) {
    m_shop.addProducts(1);
    const auto load = [this](const QMap<QString, QString>& changed) {
        QMap<QString, QString> values = m_form.currentDefinition({}, {}).values;
        values.insert(changed);
        m_form.applyDefinition({str("Koe"), {}, values});
    };
    m_dialogs.expectMessage(
        str("Huomaa: määrittelyn \"Koe\" arvoja ei voitu lukea, käytetään oletusarvoja: "
            "VieHr=x; Kampanjat=on"));
    load({{str("OstohintaEdit"), str("0")},
          {str("Kampanjat"), str("on")},
          {str("VieHr"), str("x")},
          {str("AsRyhmaCheckList"), str("1,9")}});
    EXPECT_EQ(m_form.currentDefinition({}, {}).values.value(str("AsRyhmaCheckList")), str("1,9"));
    m_form.controls().shelfLabels->click();  // settles that one
    const QString question =
        str("Määrittelyssä on arvoja, joilla sitä ei pitäisi ajaa:\n"
            "Kampanjat=on (Kampanja): arvoa ei voi lukea\n"
            "OstohintaEdit=0 (Ostohinta): kertoimen on oltava suurempi kuin 0\n\n"
            "Ajetaanko silti?");
    m_dialogs.expectQuestion(question, false);
    EXPECT_TRUE(m_form.EsikatseleClick()->refused);
    EXPECT_EQ(changed(), str("0"));

    m_dialogs.expectQuestion(question, true);
    m_dialogs.expectMessage(str("Tuotetiedot muutettu ( 1 kpl)"));
    EXPECT_TRUE(m_form.EsikatseleClick()->clean());
    EXPECT_EQ(m_shop.logMessages().filter(str("Huomaa: ajetaan silti, ")).size(), 2);
    EXPECT_TRUE(m_shop.logMessages().contains(
        str("Huomaa: asiakasryhmää 9 ei enää ole (AsRyhmaCheckList), sitä ei oteta huomioon")));

    // a class that does not exist is no question
    load({{str("LahdeAlvLuokkaEdit"), str("77")}, {str("OstohintaEdit"), str("1")}});
    m_dialogs.expectMessage(
        str("Määrittelyä ei ajeta: LahdeAlvLuokkaEdit=77 (Vanha luokka): luokkaa ei ole olemassa"));
    EXPECT_TRUE(m_form.EsikatseleClick()->refused);
}

TEST_F(FormRun, OnlyInterruptingIsPossibleDuringARunAndStopsBetweenTwoProducts) {
    m_shop.addProducts(kProducts);
    auto* interrupt = m_form.findChild<QPushButton*>(str("Keskeyta"));
    const auto* progress = m_form.findChild<QProgressBar*>();
    const QStringList fields = vatchange::encodeDefinition({}).keys();
    whileRunning([&] {
        if (progress->value() <= 0)  // the first products are still ahead
            return false;
        for (const QWidget* control : m_form.findChildren<QWidget*>()) {
            const bool button = control->inherits("QAbstractButton");
            const bool value = fields.contains(control->objectName());
            if ((button || value) && control != interrupt) {
                EXPECT_FALSE(control->isEnabled()) << control->objectName().toStdString();
            }
        }
        EXPECT_FALSE(m_form.LatausCombo->isEnabled());
        EXPECT_FALSE(m_form.EsikatseleClick()) << "a second run inside the first";
        QTest::mouseClick(interrupt, Qt::LeftButton);
        return true;
    });
    // the text says what was done; how much that is depends on the machine
    class AnyMessage : public framework::DialogHandler {
      public:
        bool someoneThere() const override { return true; }
        void message(QWidget*, framework::MessageKind, const QString& text) override {
            texts.append(text);
        }
        bool ask(QWidget*, const QString&) override { return false; }
        QString saveFileName(QWidget*, const QString&, const QString&, const QString&) override {
            return {};
        }
        QStringList texts;
    } messages;
    framework::DialogHandler* scripted = framework::Dialogs::setHandler(&messages);
    const auto result = m_form.EsikatseleClick();
    framework::Dialogs::setHandler(scripted);

    ASSERT_EQ(m_done, 1);
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->cancelled);
    EXPECT_GT(result->products, 0);
    EXPECT_LT(result->products, kProducts);
    EXPECT_EQ(changed(), QString::number(result->products));
    EXPECT_EQ(messages.texts.size(), 1);
    EXPECT_TRUE(m_shop.logMessages().contains(messages.texts.value(0)));
}

TEST_F(FormRun, ClosingDuringARunAsksFirst) {
    m_shop.addProducts(kProducts);
    const QString question = str("Muutos on kesken.\nKeskeytetäänkö muutos ja suljetaanko lomake?");
    int asked = 0;
    m_dialogs.expectQuestion(question, false);
    whileRunning([&] {
        if (asked++ == 0) {
            EXPECT_FALSE(m_form.close());
            return false;  // answered no: the run goes on
        }
        m_form.Unattended = true;  // nobody is asked, and nothing closes
        EXPECT_FALSE(m_form.close());
        return true;
    });
    const auto result = m_form.EsikatseleClick();
    ASSERT_EQ(m_done, 1);
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->clean());
    EXPECT_EQ(changed(), QString::number(kProducts));
    EXPECT_TRUE(m_form.isVisible());
}

TEST_F(FormRun, ConfirmedClosingStopsTheRunAndClosesTheForm) {
    m_shop.addProducts(kProducts);
    m_dialogs.expectQuestion(str("Muutos on kesken.\nKeskeytetäänkö muutos ja suljetaanko lomake?"),
                             true);
    whileRunning([&] {
        m_form.close();
        m_form.Unattended = true;  // what follows is not this test's
        return true;
    });
    const auto result = m_form.EsikatseleClick();
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->cancelled);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !m_form.isVisible(); }));
}

}  // namespace
