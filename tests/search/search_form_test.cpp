#include <gtest/gtest.h>

#include <QDragEnterEvent>
#include <QHeaderView>
#include <QMimeData>
#include <QPointer>
#include <QWheelEvent>

#include "search/column_dialog.h"
#include "search/drag_source.h"
#include "tests/search/product_support.h"

using namespace search;
using test::cellText;
using test::columnTexts;
using test::str;

namespace {

constexpr char kAll[] = "200 34 341 35 ABC";  // the products that are not passive

// A small shop: six products, one of them passive, two groups.
class SearchFormTest : public ::testing::Test {
  protected:
    SearchFormTest() {
        for (const char* product : {"'34', 'Kahvi', 1, 4.5, 0", "'341', 'Kahvipannu', 2, 31, 0",
                                    "'35', 'äyriäiset', 1, 12, 0", "'100', 'Tee', 1, 3.25, 1",
                                    "'200', 'Teepannu', 2, 28, 0", "'ABC', 'Pannukahvi', 1, 5, 0"})
            m_company.exec(str("insert into TUOTE (NUMERO, NIMI, RYHMA, HINTA, passiivinen) "
                               "values (%1)")
                               .arg(str(product)));
        create();
    }
    ~SearchFormTest() override { delete m_form; }

    void create() {
        delete m_form;
        m_form = new TBtrHakuForm(str("KoeHaku"));
        m_form->setTableName(str("TUOTE"));
        m_form->setBaseFilter(str("passiivinen = false"));
        m_form->setChooseHandler([this](QTableView* sender, const data::TtbTable& record) {
            EXPECT_EQ(sender->objectName(), str("DBGrid1"));
            m_chosen.append(record.fieldByName(str("numero")).asString());
            if (m_onChoose)
                m_onChoose();
        });
        m_form->FormCreate();
        test::showForm(*m_form);
    }

    std::string numbers() const {
        return columnTexts(*m_form, str("NUMERO")).join(u' ').toStdString();
    }
    std::string current() const {
        return m_form->KenttaArvo(str("NUMERO")).toString().toStdString();
    }
    static void press(QWidget* control, Qt::Key key, int times,
                      Qt::KeyboardModifiers with = Qt::NoModifier) {
        for (int i = 0; i < times; ++i)
            QTest::keyClick(control, key, with);
    }

    void drop(const QString& text, const char* column, const char* source = "Suodatin") {
        const int place = m_form->model().columnOf(str(column));
        ASSERT_GE(place, 0);
        QTableView& grid = *m_form->DBGrid1;
        grid.scrollTo(m_form->model().index(0, place));
        dropAt(text, grid.viewport(), grid.visualRect(m_form->model().index(0, place)).center(),
               source);
    }
    static void dropAt(const QString& text, QWidget* target, const QPoint& at,
                       const char* source = "Suodatin") {
        const std::unique_ptr<QMimeData> data(dragData(str(source), text));
        QDragEnterEvent enter(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QDragMoveEvent move(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QDropEvent event(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        for (QEvent* step : {static_cast<QEvent*>(&enter), static_cast<QEvent*>(&move),
                             static_cast<QEvent*>(&event)})
            QCoreApplication::sendEvent(target, step);
        QCoreApplication::processEvents();
    }

    QString saved(const QString& key) const {
        return platform::IniFile::read(m_company.file(str("FORMS.INI")))
            .value(str("KoeHaku"), key)
            .value_or(str("(none)"));
    }

    test::ShopCompany m_company;
    QPointer<TBtrHakuForm> m_form;
    QStringList m_chosen;
    std::function<void()> m_onChoose;
};

TEST_F(SearchFormTest, OrdersByKeysAndHidesPassiveRecords) {
    EXPECT_EQ(numbers(), kAll);
    EXPECT_EQ(cellText(*m_form, 1, str("HINTA")), str("4") + QLocale().decimalPoint() + str("50"));

    // The record stays current under another key.
    QTableView* grid = m_form->DBGrid1;
    press(grid, Qt::Key_Down, 2);
    press(grid, Qt::Key_Plus, 5, Qt::KeypadModifier);
    EXPECT_EQ(m_form->IndexCombo->currentData().toInt(), 5);
    EXPECT_EQ(numbers(), "34 341 ABC 200 35");  // ä comes last
    EXPECT_EQ(current(), "341");
    EXPECT_EQ(grid->currentIndex().row(), 1);
    press(m_form->SearchEdit, Qt::Key_Minus, 1, Qt::KeypadModifier);
    EXPECT_EQ(m_form->IndexCombo->currentData().toInt(), 4);
    press(grid, Qt::Key_Minus, 9, Qt::KeypadModifier);
    EXPECT_EQ(m_form->IndexCombo->currentIndex(), 0);

    m_form->Passiiviset->click();
    EXPECT_EQ(numbers(), "100 200 34 341 35 ABC");
}

TEST_F(SearchFormTest, CompletesWhatIsTyped) {
    QLineEdit& edit = *m_form->SearchEdit;
    m_form->Timer->setInterval(1);
    m_form->selectIndex(5);
    for (const char* typed : {"pannu", "k"}) {
        QTest::keyClicks(&edit, str(typed));
        EXPECT_TRUE(m_form->Timer->isActive());
        EXPECT_TRUE(QTest::qWaitFor([&] { return edit.text() == str("Pannukahvi"); })) << typed;
        if (*typed == 'p') {
            EXPECT_EQ(edit.selectedText(), str("kahvi"));
            EXPECT_EQ(current(), "ABC");
            // Deleting does not complete again, and typing on overwrites the tail.
            QTest::keyClick(&edit, Qt::Key_Backspace);
            EXPECT_EQ(edit.text(), str("Pannu"));
            EXPECT_FALSE(m_form->Timer->isActive());
        }
    }
    QTest::keyClick(&edit, Qt::Key_Down);
    EXPECT_TRUE(m_form->DBGrid1->hasFocus());
    EXPECT_FALSE(m_form->Timer->isActive());
}

TEST_F(SearchFormTest, EnterRestrictsToARange) {
    test::ScriptedDialogs dialogs;
    const auto enter = [this](const char* text) {
        m_form->Suodatin->setText(str(text));
        QTest::keyClick(m_form->Suodatin, Qt::Key_Return);
        return numbers();
    };
    EXPECT_EQ(enter("34"), kAll);  // not without "Käytä aluerajausta"
    m_form->AlueRajaus->click();
    EXPECT_EQ(enter("34"), "34 341");
    EXPECT_EQ(m_form->EhtoLabel->text(), str("alue: Numero 34"));
    m_form->Suodatin->clear();
    EXPECT_EQ(numbers(), kAll);

    m_form->selectIndex(2);  // RYHMA, NUMERO
    const char* const kByGroup = "34 35 ABC 200 341";
    dialogs.expectMessage(str("Virheellinen numero 2x"));
    EXPECT_EQ(enter("2x"), kByGroup);
    EXPECT_EQ(enter("2"), "200 341");
    m_form->AlueRajaus->click();
    EXPECT_EQ(numbers(), kByGroup);
    m_form->AlueRajaus->click();
    enter("2");
    m_form->selectIndex(0);  // the range was the other key's
    EXPECT_EQ(numbers(), kAll);
}

TEST_F(SearchFormTest, DropsMakeFilters) {
    test::ScriptedDialogs dialogs;
    drop(str("2"), "RYHMA");
    EXPECT_EQ(numbers(), "200 341");
    EXPECT_EQ(m_form->Hakutable->filter(), str("passiivinen = false and (RYHMA=2)"));
    drop(str("!hinta < 5 or numero = 'ABC'"), "NIMI");  // replaces the first condition
    EXPECT_EQ(numbers(), "34 ABC");
    m_form->Passiiviset->click();
    drop(str("tee"), "NIMI");
    EXPECT_EQ(numbers(), "100 200");
    m_form->Passiiviset->click();
    drop(str("1"), "RYHMA", "DBGrid1");  // only a filter edit's text may be dropped
    dialogs.expectMessage(
        str("Lausetta ei voida tulkita: TUOTE: kohta 8: odotettiin arvoa. Korjaa lause "
            "osoitetusta kohdasta."));
    drop(str("!hinta <"), "NIMI");
    EXPECT_EQ(numbers(), "200");
    EXPECT_EQ(m_form->EhtoLabel->text(), str("Nimi alkaa \"tee\""));

    m_form->Suodatin->setText(str("x"));
    m_form->Suodatin->clear();
    EXPECT_EQ(m_form->Hakutable->filter(), str("passiivinen = false"));
    EXPECT_EQ(numbers(), kAll);
}

TEST_F(SearchFormTest, HeadingsOrderAndTakeDropsWithoutRows) {
    QHeaderView& header = *m_form->DBGrid1->horizontalHeader();
    const auto place = [&](const char* field) {
        const int column = m_form->model().columnOf(str(field));
        return QPoint(header.sectionViewportPosition(column) + 20, header.height() / 2);
    };
    const auto click = [&](const char* field) {
        QTest::mouseClick(header.viewport(), Qt::LeftButton, Qt::NoModifier, place(field));
        return header.sortIndicatorSection() == m_form->model().columnOf(str("NIMI"));
    };
    EXPECT_TRUE(click("NIMI"));
    EXPECT_EQ(m_form->IndexCombo->currentData().toInt(), 5);
    EXPECT_EQ(numbers(), "34 341 ABC 200 35");
    EXPECT_TRUE(click("HINTA"));  // no key: nothing happens
    EXPECT_EQ(m_form->SearchEdit->placeholderText(), str("Nimi"));

    drop(str("xyz"), "NIMI");
    EXPECT_EQ(numbers(), "");
    EXPECT_FALSE(m_form->Valitse->isEnabled());
    dropAt(str("1"), header.viewport(), place("RYHMA"), "DBGrid1");
    EXPECT_EQ(numbers(), "");
    dropAt(str("abc"), header.viewport(), place("NUMERO"));
    EXPECT_EQ(numbers(), "ABC");
    EXPECT_EQ(m_form->RiviLabel->text(), str("1 rivi"));
    m_form->Jatahakuauki->click();
    m_form->Valitse->click();
    EXPECT_EQ(m_chosen, QStringList({"ABC"}));
}

TEST_F(SearchFormTest, DigitsOnACustomersNameFindTheCustomer) {
    for (const char* sql :
         {"ASIAKAS (Asiakas, Nimi) values (12, 'Kala')",
          "ASIAKAS (Asiakas, Nimi) values (21, '12 apostolia')",
          "WINOT (TilausNro, ToimAsNimi, ToimitusAsiakas) values (1, 'Kala', 12)",
          "WINOT (TilausNro, ToimAsNimi, ToimitusAsiakas) values (2, '12 a', 21)"})
        m_company.exec(str("insert into ") + str(sql));
    TBtrHakuForm form;
    form.setTableName(str("WINOT"));
    form.FormCreate();
    for (const auto& [text, found] : {std::pair("12", "1"), std::pair("12 ", "2")}) {
        form.dropText(str(text), form.model().columnOf(str("ToimAsNimi")));
        EXPECT_EQ(columnTexts(form, str("TilausNro")).join(u' ').toStdString(), found) << text;
    }
}

TEST_F(SearchFormTest, ColumnsAreChosenInADialog) {
    const std::vector<GridColumn> columns = {{str("NIMI"), str("Nimi"), 77, false},
                                             {str("HINTA"), str("Hinta"), 0},
                                             {str("RYHMA"), str("Ryhmä"), 0, false}};
    const auto names = [](const ColumnDialog& dialog) {
        QStringList found;
        for (const GridColumn& column : dialog.columns())
            found.append((column.visible ? str("") : str("-")) + column.field);
        return found.join(u' ').toStdString();
    };
    ColumnDialog dialog({columns[1], columns[0], columns[2]}, columns, nullptr);
    dialog.Etsi->setText(str("ryhm"));
    EXPECT_TRUE(dialog.Sarakkeet->item(0)->isHidden() && !dialog.Sarakkeet->item(2)->isHidden());
    dialog.Sarakkeet->item(0)->setCheckState(Qt::Unchecked);
    EXPECT_FALSE(dialog.Ok->isEnabled());  // a column is left
    dialog.Palauta->click();
    EXPECT_TRUE(dialog.Ok->isEnabled());
    EXPECT_EQ(names(dialog), "-NIMI HINTA -RYHMA");
    dialog.Sarakkeet->item(0)->setCheckState(Qt::Checked);
    dialog.Sarakkeet->model()->moveRow({}, 2, {}, 0);
    EXPECT_EQ(names(dialog), "-RYHMA NIMI HINTA");

    // In the window: the current row stays.
    m_form->DBGrid1->setCurrentIndex(m_form->model().index(2, 0));
    QTimer::singleShot(0, m_form, [&] {
        auto* open = qobject_cast<ColumnDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(open, nullptr);
        for (int i = 0; i < open->Sarakkeet->count(); ++i) {
            const bool name = open->Sarakkeet->item(i)->toolTip() == str("NIMI");
            open->Sarakkeet->item(i)->setCheckState(name ? Qt::Checked : Qt::Unchecked);
        }
        open->accept();
    });
    m_form->Sarakkeet->trigger();
    m_form->Tallenna->trigger();
    EXPECT_EQ(saved(str("Sarakkeita")) + saved(str("Sarake0")), str("1NIMI"));
    EXPECT_EQ(current(), "341");
}

TEST_F(SearchFormTest, SearchesRecordByRecord) {
    // Waits for the wait window, or presses Escape in it.
    bool waited = false;
    bool cancels = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() != str("HakuOdotus") || !window->isVisible())
                continue;
            waited = waited || !m_form->isVisible();
            if (cancels)
                QTest::keyClick(window, Qt::Key_Escape);
        }
    });
    watch.start(0);
    drop(str("*PANNU"), "NIMI");
    EXPECT_TRUE(waited);
    EXPECT_TRUE(m_form->isVisible());
    EXPECT_TRUE(m_form->HakuLabel->isHidden());
    EXPECT_EQ(numbers(), "200 341 ABC");
    drop(str("*1"), "RYHMA");  // what is shown of a number
    EXPECT_EQ(numbers(), "34 35 ABC");
    m_form->Passiiviset->click();
    EXPECT_EQ(numbers(), "100 34 35 ABC");
    m_form->dropText(str("Tee"), m_form->model().columnOf(str("NIMI")), true);
    EXPECT_EQ(numbers(), "100 200");  // on the indicator: from the start

    cancels = true;
    waited = false;
    drop(str("*kahvi"), "NIMI");
    EXPECT_TRUE(waited && m_form->isVisible());
    EXPECT_EQ(m_form->EhtoLabel->text().left(6), str("haku: "));
}

TEST_F(SearchFormTest, ChoosesAndCloses) {
    m_form->Jatahakuauki->click();
    m_onChoose = [this] { QTest::keyClick(m_form->DBGrid1, Qt::Key_Return); };  // no way in twice
    QTest::keyClick(m_form->DBGrid1, Qt::Key_Down);
    QTest::keyClick(m_form->DBGrid1, Qt::Key_Return);
    EXPECT_EQ(m_chosen, QStringList({"34"}));
    EXPECT_TRUE(m_form->isVisible());
    m_onChoose = nullptr;
    m_form->Jatahakuauki->click();

    // With a user the form is only hidden.
    m_form->lisaaKayttaja(str("Lomake1"));
    EXPECT_TRUE(m_form->OnkoKayttajia() && m_form->OnkoKayttajia(str("lomake1")));
    EXPECT_FALSE(m_form->OnkoKayttajia(str("Lomake2")));
    const QPoint place = m_form->DBGrid1->visualRect(m_form->model().index(2, 0)).center();
    QTest::mouseClick(m_form->DBGrid1->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    QTest::mouseDClick(m_form->DBGrid1->viewport(), Qt::LeftButton, Qt::NoModifier, place);
    EXPECT_EQ(m_chosen, QStringList({"34", "341"}));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_FALSE(m_form.isNull());
    EXPECT_FALSE(m_form->isVisible());
    m_form->poistaKayttaja(str("Lomake1"));
    m_form->show();
    QTest::keyClick(m_form->Suodatin, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(m_form.isNull());

    create();
    m_form->hide();
    QTimer::singleShot(0, m_form, [this] { QTest::keyClick(m_form->DBGrid1, Qt::Key_Return); });
    EXPECT_EQ(m_form->exec(), QDialog::Accepted);
    EXPECT_EQ(m_chosen.last(), str("200"));
}

TEST_F(SearchFormTest, ChoosesNothingInsteadOfARowThatIsGone) {
    test::ScriptedDialogs dialogs;
    // row, statement, whether the row is read again and blank, what is left
    const std::tuple<int, const char*, bool, const char*> cases[] = {
        {2, "delete from TUOTE where NUMERO = '341'", false, "200 34 35 ABC"},
        {2, "update TUOTE set passiivinen = 1 where NUMERO = '35'", false, "200 34 ABC"},
        {1, "update TUOTE set NUMERO = '36' where NUMERO = '34'", false, "200 36 ABC"},
        {2, "delete from TUOTE where NUMERO = 'ABC'", true, "200 36"},
    };
    for (const auto& [row, sql, reread, left] : cases) {
        m_form->DBGrid1->setCurrentIndex(m_form->model().index(row, 0));
        m_company.exec(str(sql));
        if (reread)
            m_form->model().reread();
        dialogs.expectMessage(
            str("Riviä ei voi valita: se on poistettu tai sitä on muutettu muualla. "
                "Rivit luettiin uudelleen."));
        QTest::keyClick(m_form->DBGrid1, Qt::Key_Return);
        EXPECT_TRUE(dialogs.allShown() && m_form->isVisible()) << sql;
        EXPECT_EQ(numbers(), left) << sql;
    }
    EXPECT_EQ(m_chosen, QStringList());
    QTest::keyClick(m_form->DBGrid1, Qt::Key_End);
    QTest::keyClick(m_form->DBGrid1, Qt::Key_Return);
    EXPECT_EQ(m_chosen, QStringList({"36"}));
}

TEST_F(SearchFormTest, ActivationShowsWhatOthersChanged) {
    const auto activate = [this] {
        QEvent activation(QEvent::WindowActivate);
        QApplication::sendEvent(m_form, &activation);
    };
    m_form->DBGrid1->setCurrentIndex(m_form->model().index(2, 0));
    QTest::keyClick(m_form->DBGrid1, Qt::Key_Down, Qt::ShiftModifier);
    m_company.exec(str("update TUOTE set NIMI = 'Mokka' where NUMERO = '34'"));
    activate();
    QTest::qWait(50);
    EXPECT_EQ(cellText(*m_form, 1, str("NIMI")), str("Mokka"));
    EXPECT_EQ(m_form->Valittuja(), 2);  // the same rows: the selection stays

    // The same number of records, but others match.
    m_company.exec(str("update TUOTE set passiivinen = 1 where NUMERO = '34'"));
    m_company.exec(str("update TUOTE set passiivinen = 0 where NUMERO = '100'"));
    activate();
    EXPECT_TRUE(QTest::qWaitFor([&] { return numbers() == "100 200 341 35 ABC"; }));
    EXPECT_EQ(current(), "35");
    EXPECT_EQ(m_form->DBGrid1->currentIndex().row(), 3);
}

TEST_F(SearchFormTest, ClosingAnActivationErrorDoesNotReread) {
    // Boxes that take the activation while open, as the program's own do.
    class Boxes : public test::ScriptedDialogs {
      public:
        int shown = 0;
        void message(QWidget* parent, framework::MessageKind, const QString&) override {
            QDialog box(parent);
            QTimer::singleShot(0, &box, &QDialog::accept);
            box.exec();
            if (++shown < 5)  // the desktop reactivates the window, but not endlessly
                parent->activateWindow();
        }
    } boxes;
    class Form : public TBtrHakuForm {
      public:
        bool unreadable = false;
        void dropCaches() override {
            if (unreadable)
                throw data::DataError(data::ErrorKind::Io, str("TUOTE"), QString());
        }
    } form;
    form.lisaaKayttaja(str("Koe"));
    form.setTableName(str("TUOTE"));
    form.FormCreate();
    test::showForm(form);
    form.unreadable = true;
    for (int activations = 1; activations <= 2; ++activations) {
        m_form->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_form));
        form.activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([&] { return boxes.shown == activations; }));
        QTest::qWait(50);
        EXPECT_EQ(boxes.shown, activations);
    }
}

TEST_F(SearchFormTest, SettingsOfTheWindow) {
    for (const char* setting :
         {"'ALUERAJAUS', '1'", "'niminimi2haku', '1'", "'HakuAlkuMerkki', '36'"})
        m_company.exec(
            str("insert into ini values ('ZAV.INI', 'ASETUKSIA', %1)").arg(str(setting)));
    m_company.exec(str("update TUOTE set Nimi2 = 'Kahvikuppi' where NUMERO = '35'"));
    create();
    EXPECT_TRUE(m_form->AlueRajaus->isChecked());
    QTest::keyClicks(m_form->Suodatin, str("$12$3"));
    EXPECT_EQ(m_form->Suodatin->text(), str("123"));
    drop(str("*kahvi"), "NIMI");
    EXPECT_EQ(numbers(), "34 341 35 ABC");
}

TEST_F(SearchFormTest, TypingWheelAndSelection) {
    QTest::keyClick(m_form->DBGrid1, Qt::Key_K);
    EXPECT_EQ(m_form->Suodatin->text(), str("k"));
    EXPECT_TRUE(m_form->Suodatin->hasFocus());
    QTest::keyClick(m_form->Suodatin, Qt::Key_Down);
    EXPECT_TRUE(m_form->DBGrid1->hasFocus());

    const auto turn = [this](int eighths) {
        QWheelEvent event(
            QPointF(20, 20), m_form->DBGrid1->viewport()->mapToGlobal(QPointF(20, 20)), QPoint(),
            QPoint(0, eighths), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(m_form->DBGrid1->viewport(), &event);
    };
    turn(-120);
    turn(-120);
    EXPECT_EQ(m_form->DBGrid1->currentIndex().row(), 2);
    turn(120);
    EXPECT_EQ(m_form->DBGrid1->currentIndex().row(), 1);

    QTest::keyClick(m_form->DBGrid1, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(m_form->DBGrid1, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(m_form->Valittuja(), 3);
    QStringList chosen;
    for (const data::StoredRecord& record : m_form->Valitut())
        chosen.append(GridRow(m_form->Hakutable->layout(), record).text(str("NUMERO")));
    EXPECT_EQ(chosen, QStringList({"34", "341", "35"}));
}

TEST_F(SearchFormTest, LayoutIsKept) {
    QHeaderView* header = m_form->DBGrid1->horizontalHeader();
    const auto column = [this](const char* field) { return m_form->model().columnOf(str(field)); };
    for (int i = 3; i < header->count(); ++i)
        header->setSectionHidden(i, true);
    header->moveSection(header->visualIndex(column("NIMI")), 0);
    header->setSectionHidden(column("NIMI"), false);
    header->resizeSection(column("NUMERO"), 111);
    m_form->resize(700, 333);
    m_form->selectIndex(1);
    m_form->Tallenna->trigger();
    EXPECT_EQ(saved(str("LomakeKorkeus")), str("(none)"));
    header->setSectionHidden(column("RYHMA"), true);
    m_form->Tallennakorkeus->trigger();

    create();
    EXPECT_EQ(m_form->size(), QSize(700, 333));
    EXPECT_EQ(m_form->IndexCombo->currentIndex(), 1);
    EXPECT_EQ(m_form->Hakutable->indexName(), str("1"));
    EXPECT_EQ(m_form->DBGrid1->columnWidth(1), 111);
    const QStringList columns = test::columnNames(*m_form);
    EXPECT_EQ(columns.mid(0, 2), QStringList({"NIMI", "NUMERO"}));
    EXPECT_TRUE(columns.contains(str("-RYHMA")));
}

}  // namespace
