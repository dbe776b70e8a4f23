// The changes window over a real run, operated by keys.
#include "vatchange/views/changes_window.h"

#include <QSignalSpy>
#include <QTest>

#include "tests/support/recording_ports.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "tests/support/window_checks.h"
#include "vatchange/changes/change_texts.h"
#include "vatchange/run/change_run.h"

using namespace vatchange;

namespace {

class ChangesWindowTest : public testing::Test {
  protected:
    // Three products by 1.2, two of which have a customer price; product 3 is below the limit.
    ChangesWindowTest() {
        QLocale::setDefault(QLocale(QLocale::Finnish));
        shop.exec(
            "insert into TUOTE (NUMERO, NIMI, HINTA, LVV) values ('1', 'Kahvi', 10, 3), "
            "('2', 'Tee', 20, 3), ('3', 'Mehu', 0.4, 3)");
        shop.exec(
            "insert into ASALE (AsiakasNumero, Tuote, Hinta, Tyyppi, Maara, AsikasTyyppi) "
            "values (7, '1', 9, 1, 1, 0), (7, '2', 18, 1, 1, 0)");
        ChangeDefinition definition;
        definition.sourceClass = 3;
        definition.targetClass = 6;
        definition.levels[0] = {1.2, QStringLiteral("hinta"), false};
        definition.priceChangeLimit = 0.5;
        definition.customerPriceLists = true;
        definition.writeShelfLabels = false;
        test::RecordingPorts ports;
        run = runChange(shop.database(), definition, ports).run;
    }
    ~ChangesWindowTest() override {
        delete window;
        QLocale::setDefault(QLocale::system());
    }

    void open() {
        ChangesContext context;
        context.company = QStringLiteral("Koeyritys");
        context.title = QStringLiteral("Ajo 1: Koe");
        context.run = run;
        context.database = &shop.database();
        context.undone = [this] { ++undone; };
        window = showRunChanges({run}, context, nullptr);
        QApplication::setActiveWindow(window);
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        ASSERT_TRUE(QTest::qWaitFor([this] { return !window->isReading(); }));
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(window->windowHandle(), key, modifiers);
    }
    /// A button's Alt key: it is pressed a moment later.
    void pressAlt(Qt::Key key, const QPushButton& button) const {
        QSignalSpy clicked(&button, &QPushButton::clicked);
        press(key, Qt::AltModifier);
        EXPECT_TRUE(!clicked.isEmpty() || clicked.wait());
    }
    std::string focus() const { return window->focusWidget()->objectName().toStdString(); }
    /// "product field before>after" of the shown rows.
    QStringList rows() const {
        QStringList texts;
        const ChangesModel& model = window->model();
        for (int row = 0; row < model.rowCount(); ++row) {
            const auto cell = [&](ChangeColumn column) {
                return model.index(row, static_cast<int>(column)).data().toString();
            };
            texts += QStringLiteral("%1 %2 %3>%4")
                         .arg(cell(ChangeColumn::Product), cell(ChangeColumn::Field),
                              cell(ChangeColumn::Before), cell(ChangeColumn::After));
        }
        return texts;
    }

    test::ScriptedDialogs dialogs;
    test::ShopCompany shop;
    qint64 run = 0;
    QPointer<ChangesWindow> window;
    int undone = 0;
};

}  // namespace

TEST_F(ChangesWindowTest, ByKeysFromTheSearchToTheUndo) {
    open();
    const ChangesControls& c = window->controls();
    EXPECT_EQ(c.products.value->text(), "2");  // product 3 keeps its price
    EXPECT_EQ(c.prices.value->text(), "4");
    EXPECT_EQ(c.mean.value->text(), "+20,00 %");
    EXPECT_EQ(c.rows->text(), QStringLiteral("%1 riviä").arg(window->list().rowCount()));
    QCoreApplication::processEvents();
    test::expectNothingClipped(*window);
    test::expectAccessibleNames(*window);
    test::expectNoMnemonicClash(*window);
    test::expectReadable(*window);
    test::expectTabGoesAround(*window);

    // a search, and back to all rows
    c.search->setFocus();
    QTest::keyClicks(c.search, "kahvi taso");
    press(Qt::Key_Down);
    EXPECT_EQ(focus(), "Rivit");
    EXPECT_EQ(rows(), QStringList{"1 Taso 1 10,00>12,00"});
    pressAlt(Qt::Key_P, *c.clear);
    EXPECT_EQ(c.search->text(), "");

    // a finding as a filter
    QPushButton& unchanged = *c.finding[static_cast<size_t>(ChangeFinding::PriceUnchanged)];
    ASSERT_TRUE(unchanged.isVisible());
    unchanged.setFocus();
    press(Qt::Key_Space);
    EXPECT_EQ(rows(), QStringList{"3 Taso 1 0,40>0,40"});
    press(Qt::Key_Space);

    // a table and level of the summary: customer prices are the first table
    c.summary->setFocus();
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(focus(), "Rivit");
    EXPECT_EQ(c.table->currentText(), "Asiakashinnastot");

    // orders: by the choice and by the heading
    pressAlt(Qt::Key_P, *c.clear);
    c.order->setFocus();
    c.order->setCurrentIndex(c.order->findText("Jälkeen, suurin ensin"));
    Q_EMIT c.order->activated(c.order->currentIndex());
    EXPECT_EQ(rows().value(0), "2 Taso 1 20,00>24,00");
    Q_EMIT c.grid->horizontalHeader()->sectionClicked(static_cast<int>(ChangeColumn::Before));
    EXPECT_EQ(rows().value(0), "1 Veroton hinta 0,00>8,6056");  // 10.80 / 1.255

    // the price list
    const QString file = shop.file("hinnasto.csv");
    dialogs.expectChoice(
        "Hinnastoon tulevat tuotteiden muuttuneet hinnat: tuotenumero, nimi, taso, vanha ja uusi "
        "hinta.\n\nMissä muodossa?",
        "&Rivi joka hinnasta");
    dialogs.expectFileChoice(file);
    pressAlt(Qt::Key_H, *c.priceList);
    EXPECT_EQ(QString::fromUtf8(test::fileBytes(file)).split("\r\n").value(2),
              "2;Tee;1;20,00;24,00");

    // undo of the row of product 1
    c.search->setFocus();
    QTest::keyClicks(c.search, "kahvi taso");
    press(Qt::Key_Down);
    press(Qt::Key_Home, Qt::ControlModifier);
    dialogs.expectQuestion(
        "Perutaanko ajon 1 muutokset näistä tietueista?\n\nTuotteet 1: 1\n\nTietueeseen "
        "palautetaan "
        "kaikki kentät, jotka ajo muutti, tilaukseen myös sen muut rivit. Kenttä, jota on muutettu "
        "ajon jälkeen, jää ennalleen. Kassat, etiketit ja verkkokauppa saavat palautetut hinnat "
        "muutoksina. Muu osa ajosta jää voimaan.",
        true);
    dialogs.expectMessage("Palautettu 1 tietuetta.");
    pressAlt(Qt::Key_L, *c.undo);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !window->isReading(); }));
    EXPECT_EQ(undone, 1);
    EXPECT_EQ(shop.text("select hinta, lvv from TUOTE where numero = '1'"), "10|3");
    EXPECT_EQ(shop.text("select hinta, lvv from TUOTE where numero = '2'"), "24|6");
    EXPECT_EQ(shop.text("select hinta from ASALE where tuote = '1'"), "10.8");
    ASSERT_EQ(window->model().rowCount(), 1);  // still searched for
    EXPECT_EQ(findingsShown(window->list(), window->model().listRow(0)), "Peruttu");

    // a second time there is nothing to undo
    c.grid->setFocus();
    press(Qt::Key_Home, Qt::ControlModifier);
    dialogs.expectMessage(
        "Valituilla riveillä ei ole peruttavaa: ajo ei muuttanut niitä, tai muutos on jo peruttu.");
    pressAlt(Qt::Key_L, *c.undo);

    press(Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isNull());
}

TEST_F(ChangesWindowTest, ARehearsalHasNoUndoAndNeedsNoDatabase) {
    auto list = std::make_shared<ChangeList>();
    {
        const auto copy = shop.otherProgram();
        ChangeReader(*copy, {run}, *list).readAll();
    }
    ChangesContext context;
    context.title = QStringLiteral("Koeajo: Koe");
    context.writePdf = [](const QString& file) {
        throw data::DataError(data::ErrorKind::DiskFull, file, QStringLiteral("no room"));
    };
    window = showChanges(list, context, nullptr);
    const ChangesControls& c = window->controls();
    EXPECT_FALSE(c.undo->isVisible());
    EXPECT_EQ(c.mean.value->text(), "+20,00 %");
    EXPECT_EQ(window->model().rowCount(), list->rowCount());
    dialogs.expectFileChoice(shop.file("koeajo.pdf"));
    dialogs.expectAnyMessage();
    c.pdf->click();
    EXPECT_TRUE(dialogs.lastText().contains("koeajo.pdf"));
    dialogs.expectFileChoice(shop.file("muutokset.csv"));
    c.spreadsheet->click();
    EXPECT_EQ(test::fileBytes(shop.file("muutokset.csv")).count("\r\n"), list->rowCount() + 1);
}
