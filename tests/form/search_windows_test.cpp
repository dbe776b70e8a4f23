#include <QDragEnterEvent>
#include <QMimeData>

#include "search/drag_source.h"
#include "search/group_haku.h"
#include "search/tuote_haku.h"
#include "tests/form/form_test.h"

using test::str;

namespace {

class SearchWindows : public test::FormTest {
  protected:
    SearchWindows() {
        for (const char* rows : {"ALIRYHMA (Nro, Nimi) values (101, 'Kahvit')",
                                 "ALIRYHMA (Nro, Nimi) values (102, 'Teet')",
                                 "TRYHMA (Nro, Nimi) values (10, 'Juomat')",
                                 "TRYHMA (Nro, Nimi) values (20, 'Leivät')",
                                 "PRYHMA (NRO, nimi) values (1, 'Elintarvikkeet')",
                                 "PRYHMA (NRO, nimi) values (2, 'Palvelut')",
                                 "TUOTE (NUMERO, NIMI) values ('A-1', 'Kahvi')",
                                 "TUOTE (NUMERO, NIMI) values ('A-2', 'Tee')"})
            m_shop.exec(str("insert into ") + str(rows));
        for (QCheckBox* on :
             {c().subGroup.on, c().productGroup.on, c().mainGroup.on, c().productRange})
            on->click();
    }
    std::string text(const char* edit) const {
        return control<QLineEdit>(edit)->text().toStdString();
    }
    /// Opens the search window of a button.
    search::TBtrHakuForm* open(const char* button) const {
        QTest::mouseClick(control(button), Qt::LeftButton);
        for (auto* window : m_form->findChildren<search::TBtrHakuForm*>())
            if (window->isVisible())
                return window;
        ADD_FAILURE() << button;
        return nullptr;
    }
    /// Drags a text out of a search window's grid onto an edit.
    static void drop(QWidget* target, const QString& text, const char* table = "") {
        const std::unique_ptr<QMimeData> data(search::dragData(str("DBGrid1"), text, str(table)));
        const QPoint place = target->rect().center();
        QDragEnterEvent enter(place, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(target, &enter);
        if (!enter.isAccepted())
            return;
        QDropEvent dropped(place, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(target, &dropped);
        EXPECT_TRUE(dropped.isAccepted());
    }
};

TEST_F(SearchWindows, ButtonsPutTheChosenNumberIntoTheStartEdit) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"AliryhmaHakuButton", "AliryhmaAlkuEdit", "102"},
        {"TuoteryhmaHakuButton", "TuoteryhmaAlkuEdit", "20"},
        {"PaaryhmaHakuButton", "PaaryhmaAlkuEdit", "2"},
        {"TuotehakuButton", "TuotenroAlkuEdit", "A-2"}};
    for (const auto& [button, edit, chosen] : cases) {
        search::TBtrHakuForm* window = open(button);
        ASSERT_NE(window, nullptr);
        EXPECT_FALSE(window->isModal());
        window->DBGrid1->setFocus();
        QTest::keyClick(window->DBGrid1, Qt::Key_Down);
        QTest::keyClick(window->DBGrid1, Qt::Key_Return);
        EXPECT_FALSE(window->isVisible());
        EXPECT_EQ(text(edit), chosen);
    }
    for (const char* last : {"AliryhmaLoppuEdit", "TuoteryhmaLoppuEdit", "PaaryhmaLoppuEdit"})
        EXPECT_EQ(text(last), "0") << last;
}

TEST_F(SearchWindows, OpenAtThePresentNumberAndAreKeptForTheForm) {
    type(c().productGroup.first, "15");
    QPointer<search::TBtrHakuForm> first = open("TuoteryhmaHakuButton");
    EXPECT_EQ(first->KenttaArvo(str("Nro")).toInt(), 20);  // the nearest
    QTest::keyClick(first->DBGrid1, Qt::Key_Escape);
    EXPECT_FALSE(first->isVisible());
    EXPECT_EQ(text("TuoteryhmaAlkuEdit"), "15");

    first->selectIndex(1);  // ordered by name: the number is no place to open at
    type(c().productGroup.first, "10");
    EXPECT_EQ(open("TuoteryhmaHakuButton"), first);
    EXPECT_EQ(first->Hakutable->indexName(), str("1"));
    EXPECT_EQ(first->KenttaArvo(str("Nro")).toInt(), 20);
    delete m_form;
    EXPECT_TRUE(first.isNull());
}

TEST_F(SearchWindows, ADraggedNumberReplacesTheTextOfARangeEdit) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"AliryhmaAlkuEdit", "102", "102"},   {"AliryhmaLoppuEdit", "103", "103"},
        {"TuoteryhmaAlkuEdit", "10", "10"},   {"TuoteryhmaLoppuEdit", "20", "20"},
        {"PaaryhmaAlkuEdit", "1", "1"},       {"PaaryhmaLoppuEdit", " 2 ", "2"},
        {"TuotenroAlkuEdit", "A-1", "A-1"},   {"TuotenroLoppuEdit", "A-2", "A-2"},
        {"PaaryhmaLoppuEdit", "Muut", "2"},  // not a number
        {"TuotenroAlkuEdit", "B 77", "B 77"},
    };
    for (const auto& [edit, dragged, shown] : cases) {
        drop(control(edit), str(dragged));
        EXPECT_EQ(text(edit), shown) << edit;
    }

    // numbers of other tables are refused with a reason, right ones have their group's name
    drop(c().mainGroup.first, str("2"), "PRYHMA");
    EXPECT_EQ(text("PaaryhmaAlkuEdit"), "2");
    const std::tuple<QLineEdit*, const char*, const char*> refused[] = {
        {c().subGroup.first, "TUOTE", "Raahattu numero on tuotteen, tähän kuuluu aliryhmä"},
        {c().mainGroup.last, "TRYHMA", "Raahattu numero on tuoteryhmän, tähän kuuluu pääryhmä"},
        {c().targetClass, "TUOTE", "Raahattu numero on tuotteen, tähän kuuluu alv-luokka"}};
    for (const auto& [edit, table, reason] : refused) {
        const QString before = edit->text();
        drop(edit, str("7"), table);
        EXPECT_EQ(edit->text(), before);
        EXPECT_EQ(control<QLabel>("StatusLabel")->text(), str(reason));
    }
    auto* names = c().subGroup.names;
    EXPECT_TRUE(QTest::qWaitFor([names] { return names->isVisible(); }));
    EXPECT_EQ(names->text(), str("Teet – ryhmää 103 ei ole"));
}

}  // namespace
