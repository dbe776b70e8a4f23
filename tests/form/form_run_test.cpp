#include <QDir>
#include <QTimer>

#include "company/company.h"
#include "company/logs.h"
#include "tests/form/form_test.h"
#include "vatchange/definition/definition_codec.h"
#include "vatchange/views/changes_window.h"

using test::str;

namespace {

// Enough for the window to process events several times during a run.
constexpr int kProducts = 6000;

/// The texts that a label has shown.
class ShownTexts : public QObject {
  public:
    explicit ShownTexts(QLabel* label) : m_label(label) { label->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint && !texts.contains(m_label->text()))
            texts += m_label->text();
        return false;
    }
    QStringList texts;

  private:
    QLabel* m_label;
};

class FormRun : public test::FormTest {
  protected:
    FormRun() {
        c().sourceClass->setValue(3);
        c().targetClass->setValue(6);
        c().keep(1)->click();
    }
    QString changed() const {
        return m_shop.text(str("select count(*) from TUOTE where LVV = 6 and HINTA = 10.12"));
    }
    // Calls the action whenever events are processed during the run, until it returns true.
    std::optional<vatchange::RunResult> runWith(const std::function<bool()>& action) {
        m_shop.addProducts(kProducts);
        int done = 0;
        QTimer timer;
        timer.callOnTimeout(m_form, [&] {
            if (m_form->isRunning() && action()) {
                ++done;
                timer.stop();
            }
        });
        timer.start(1);
        const auto result = m_form->EsikatseleClick();
        EXPECT_EQ(done, 1);
        EXPECT_TRUE(result);
        return result;
    }
};

TEST_F(FormRun, ChangesTheProductsAndReportsIt) {
    m_shop.addProducts(3);
    m_dialogs.expectMessage(str("Tuotetiedot muutettu ( 3 kpl)"));
    const ShownTexts shown(control<QLabel>("StatusLabel"));
    QTest::mouseClick(m_form->Esikatsele, Qt::LeftButton);
    EXPECT_EQ(changed(), str("3"));
    for (const char* step : {"TRyhmä alv1", "TRyhmä alv2", "Päivitetään tuotteet"})
        EXPECT_TRUE(shown.texts.contains(str(step))) << step;
    EXPECT_EQ(control<QLabel>("StatusLabel")->text(), str("Muutos valmis, tuotteita muutettu 3"));
    EXPECT_TRUE(m_form->Esikatsele->isEnabled());
    EXPECT_FALSE(control("Keskeyta")->isEnabled());
}

TEST_F(FormRun, AsksBeforeItRunsADefinitionWithProblems) {
    m_shop.addProducts(1);
    const auto load = [this](const QMap<QString, QString>& changed) {
        QMap<QString, QString> values = m_form->currentDefinition({}, {}).values;
        values.insert(changed);
        m_form->applyDefinition({str("Koe"), {}, values});
    };
    m_dialogs.expectMessage(
        str("Huomaa: määrittelyn \"Koe\" arvoja ei voitu lukea, käytetään oletusarvoja: "
            "VieHr=x; Kampanjat=on"));
    load({{str("OstohintaEdit"), str("0")},
          {str("Kampanjat"), str("on")},
          {str("VieHr"), str("x")},
          {str("AsRyhmaCheckList"), str("1,9")}});
    EXPECT_EQ(m_form->currentDefinition({}, {}).values.value(str("AsRyhmaCheckList")), str("1,9"));
    c().shelfLabels->click();  // resolves the finding about it
    const QStringList problems = {
        str("Kampanjat=on (Kampanja): arvoa ei voi lukea"),
        str("OstohintaEdit=0 (Ostohinta): kertoimen on oltava suurempi kuin 0")};
    bool agree = false;
    m_dialogs.inDialog = [&](QDialog& question) {
        const auto* notes = question.findChild<QListWidget*>();
        QStringList texts;
        for (int row = 0; row < notes->count(); ++row)
            texts += notes->item(row)->text();
        EXPECT_EQ(texts.mid(0, 2), problems);
        EXPECT_EQ(texts.filter(str("asiakasryhmää 9")).size(), 1);  // no reason not to run
        EXPECT_TRUE(question.findChild<QPushButton*>(str("Peruuta"))->isDefault());
        return agree ? QDialog::Accepted : QDialog::Rejected;
    };
    EXPECT_FALSE(m_form->EsikatseleClick());
    EXPECT_EQ(changed(), str("0"));

    agree = true;
    m_dialogs.expectMessage(str("Tuotetiedot muutettu ( 1 kpl)"));
    EXPECT_TRUE(m_form->EsikatseleClick()->clean());
    EXPECT_EQ(m_shop.logMessages().filter(str("Huomaa: ajetaan silti, ")).size(), 2);
    EXPECT_TRUE(m_shop.logMessages().contains(
        str("Huomaa: asiakasryhmää 9 ei enää ole (AsRyhmaCheckList), sitä ei oteta huomioon")));

    // a missing class is refused without a question
    m_dialogs.inDialog = [](QDialog&) {
        ADD_FAILURE() << "asks about a run that will be refused";
        return QDialog::Rejected;
    };
    load({{str("LahdeAlvLuokkaEdit"), str("77")}, {str("OstohintaEdit"), str("1")}});
    m_dialogs.expectMessage(
        str("Määrittelyä ei ajeta: LahdeAlvLuokkaEdit=77 (Vanha luokka): luokkaa ei ole olemassa"));
    EXPECT_TRUE(m_form->EsikatseleClick()->refused);
}

TEST_F(FormRun, LinesLostInTheMiddleAreAFailureThatIsTold) {
    const QString log = company::AlvMuutosLogName();
    m_dialogs.expectMessage(str("Tuotetiedot muutettu ( %1 kpl)").arg(kProducts));
    m_dialogs.expectAnyMessage();
    const auto result =
        runWith([&] { return QFile::rename(log, log + str(".ennen")) && QDir().mkpath(log); });
    EXPECT_EQ(m_dialogs.lastKind(), framework::MessageKind::Warning);
    EXPECT_TRUE(m_dialogs.lastText().startsWith(
        str("Muutosloki jäi vajaaksi, rivejä puuttuu %1. Lokitiedostoon \"%2\" ei voi kirjoittaa: ")
            .arg(result->lostLogLines)
            .arg(log)));
    EXPECT_EQ(result->failedSteps, 0);
    EXPECT_GT(result->lostLogLines, 0);
    EXPECT_FALSE(result->clean());
    EXPECT_TRUE(control<QLabel>("StatusLabel")->text().endsWith(str("mutta loki jäi vajaaksi")));
    EXPECT_EQ(changed(), QString::number(kProducts));
}

TEST_F(FormRun, OnlyInterruptingIsPossibleDuringARunAndStopsBetweenTwoProducts) {
    auto* interrupt = control<QPushButton>("Keskeyta");
    const QStringList fields = vatchange::encodeDefinition({}).keys();
    m_dialogs.expectAnyMessage();
    const auto result = runWith([&] {
        if (changed() == u'0')
            return false;
        for (const QWidget* widget : m_form->findChildren<QWidget*>()) {
            const bool value =
                fields.contains(widget->objectName()) || widget == m_form->LatausCombo;
            if ((widget->inherits("QAbstractButton") || value) && widget != interrupt) {
                EXPECT_FALSE(widget->isEnabled()) << widget->objectName().toStdString();
            }
        }
        EXPECT_FALSE(m_form->EsikatseleClick()) << "a second run inside the first";
        QTest::mouseClick(interrupt, Qt::LeftButton);
        return true;
    });
    EXPECT_TRUE(result->cancelled);
    EXPECT_GT(result->products, 0);
    EXPECT_LT(result->products, kProducts);
    EXPECT_EQ(changed(), QString::number(result->products));
    EXPECT_TRUE(m_shop.logMessages().contains(m_dialogs.lastText()));
}

TEST_F(FormRun, ARehearsalShowsTheChangesAndLeavesTheCompanyAsItIs) {
    m_shop.addProducts(3);
    auto* rehearse = control<QPushButton>("Koeajo");
    const QDir results(company::dataFolderFile(str("KOEAJO")));
    const auto folders = [&results] {
        return results.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    };
    m_dialogs.expectAnyChoice(str("&Peruuta"));
    QTest::mouseClick(rehearse, Qt::LeftButton);
    EXPECT_FALSE(results.exists());

    m_dialogs.expectAnyChoice(str("&Aloita koeajo"));
    QTest::mouseClick(rehearse, Qt::LeftButton);
    const auto* window = m_form->findChild<vatchange::ChangesWindow*>();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->list().changedRecords(0), 3);  // the copy is gone
    EXPECT_EQ(changed(), str("0"));
    EXPECT_FALSE(QFile::exists(company::AlvMuutosLogName()));
    ASSERT_EQ(folders().size(), 1);
    for (const char* name : {"muutokset.csv", "ALVMUUTOS.LOG", "raportti.pdf"})
        EXPECT_TRUE(QFile::exists(results.filePath(folders().first() + u'/' + str(name)))) << name;
    delete window;

    // an edit after the rehearsal is told at the end of the run
    m_shop.exec(str("update TUOTE set HINTA = 20 where NUMERO = '2'"));
    m_dialogs.expectMessage(str("Tuotetiedot muutettu ( 3 kpl)"));
    m_dialogs.expectMessage(str("Huomaa: ajo poikkeaa koeajosta %1: eri tavalla muuttuneita "
                                "kenttiä 1.")
                                .arg(folders().first()));
    const auto result = m_form->EsikatseleClick();
    EXPECT_EQ(result->verification->findings.back().rehearsed->after, str("20.24"));

    // stopped while copying: nothing stays
    QTimer::singleShot(0, m_form, [this] { control<QPushButton>("Keskeyta")->click(); });
    m_dialogs.expectAnyChoice(str("&Aloita koeajo"));
    QTest::mouseClick(rehearse, Qt::LeftButton);
    EXPECT_EQ(control<QLabel>("StatusLabel")->text(), str("Koeajo keskeytettiin"));
    EXPECT_EQ(folders().size(), 1);
}

TEST_F(FormRun, AsksWhatToDoAboutAnUnfinishedRunOfTheSameDefinition) {
    c().customerPriceLists->click();
    for (const char* product : {"5998", "5999", "6000"})
        m_shop.exec(str("insert into ASALE (AsiakasNumero, Tuote, Hinta, Tyyppi) "
                        "values (1, '%1', 100, 1)")
                        .arg(str(product)));
    const auto stopInProducts = [this] {
        m_dialogs.expectAnyMessage();
        const auto result = runWith([this] {
            if (changed() == u'0')
                return false;
            QTest::mouseClick(control<QPushButton>("Keskeyta"), Qt::LeftButton);
            return true;
        });
        EXPECT_EQ(result->state, data::RunState::Stopped);
    };
    const auto question = [this](int run) {
        return str("Tällä määrittelyllä on keskeneräinen ajo %1 (01.09.2024 06:30:00, keskeytetty)."
                   "\nSe on muuttanut rivejä: asiakashinnastojen rivit 3, tuotteet %2.\n\n\"Jatka "
                   "ajoa\" tekee loput eikä "
                   "muuta samoja rivejä uudestaan.\n\"Aloita alusta\" hyväksyy keskeneräisen ajon "
                   "sellaisena kuin se on ja tekee uuden.")
            .arg(QString::number(run), changed());
    };
    const QString resume = str("&Jatka ajoa");
    const QString anew = str("&Aloita alusta");
    const QString leave = str("Ä&lä tee mitään");
    const QString repeated =
        str("Alusta aloitettu ajo kertoisi uudestaan nämä jo kerrotut rivit:\n\nasiakashinnastojen "
            "rivit 3 (1 5998 0 0; "
            "1 5999 0 0; 1 6000 0 0)\n\nAloitetaanko silti alusta?");
    const auto customerPrices = [this](double price) {
        return m_shop.number(
            str("select count(*) from ASALE where round(Hinta, 2) = %1").arg(price));
    };

    stopInProducts();
    m_dialogs.expectChoice(question(1), leave);
    EXPECT_FALSE(m_form->EsikatseleClick());
    EXPECT_EQ(m_dialogs.lastAnswers(), QStringList({resume, anew, leave}));
    m_dialogs.expectChoice(question(1), anew);
    m_dialogs.expectQuestion(repeated, false);
    EXPECT_FALSE(m_form->EsikatseleClick());
    EXPECT_TRUE(m_form->Esikatsele->isEnabled());
    m_dialogs.expectChoice(question(1), resume);
    m_dialogs.expectAnyMessage();
    EXPECT_EQ(m_form->EsikatseleClick()->run, 1);
    EXPECT_EQ(changed(), QString::number(kProducts));
    EXPECT_EQ(customerPrices(101.21), 3);

    m_shop.exec(str("delete from TUOTE"));
    m_shop.exec(str("update ASALE set Hinta = 100"));
    stopInProducts();
    m_dialogs.expectChoice(question(2), anew);
    m_dialogs.expectQuestion(repeated, true);
    m_dialogs.expectAnyMessage();
    EXPECT_EQ(m_form->EsikatseleClick()->run, 3);
    EXPECT_EQ(changed(), QString::number(kProducts));
    EXPECT_EQ(customerPrices(102.43), 3);  // twice, as told
    EXPECT_EQ(m_shop.database().journal()->run(2)->state, data::RunState::Accepted);
    EXPECT_TRUE(m_shop.logMessages().contains(str(
        "Huomaa: ajo 2 (01.09.2024 06:30:00, keskeytetty) hyväksyttiin sellaisena kuin se on")));
}

TEST_F(FormRun, ClosingDuringARunAsksFirst) {
    const QString question = str("Muutos on kesken.\nKeskeytetäänkö muutos ja suljetaanko lomake?");
    m_dialogs.expectQuestion(question, false);
    int asked = 0;
    const auto finished = runWith([&] {
        EXPECT_FALSE(m_form->close());
        m_form->Unattended = true;  // from now on nobody is asked, and nothing closes
        return ++asked == 2;
    });
    EXPECT_TRUE(finished->clean());
    EXPECT_EQ(changed(), QString::number(kProducts));
    EXPECT_TRUE(m_form->isVisible());

    m_form->Unattended = false;
    m_shop.exec(str("delete from TUOTE"));
    m_dialogs.expectQuestion(question, true);
    const auto stopped = runWith([&] {
        m_form->close();
        m_form->Unattended = true;  // no message at the end
        return true;
    });
    EXPECT_TRUE(stopped->cancelled);
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_form == nullptr; }));
}

}  // namespace
