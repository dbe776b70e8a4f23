#include <gtest/gtest.h>

#include <QDragEnterEvent>
#include <QMimeData>
#include <QPointer>
#include <QTest>

#include "search/drag_source.h"
#include "search/group_haku.h"
#include "search/tuote_haku.h"
#include "tests/support/scripted_dialogs.h"
#include "tests/support/shop_company.h"
#include "vatchange/form/change_form.h"

using vatchange::TAlvMuutosLomake;

namespace {

QString str(const char* utf8) {
    return QString::fromUtf8(utf8);
}

class SearchWindows : public ::testing::Test {
  protected:
    SearchWindows() {
        for (const char* sql : {"insert into ALIRYHMA (Nro, Nimi) values (101, 'Kahvit')",
                                "insert into ALIRYHMA (Nro, Nimi) values (102, 'Teet')",
                                "insert into TRYHMA (Nro, Nimi) values (10, 'Juomat')",
                                "insert into TRYHMA (Nro, Nimi) values (20, 'Leivät')",
                                "insert into PRYHMA (NRO, nimi) values (1, 'Elintarvikkeet')",
                                "insert into PRYHMA (NRO, nimi) values (2, 'Palvelut')",
                                "insert into TUOTE (NUMERO, NIMI) values ('A-1', 'Kahvi')",
                                "insert into TUOTE (NUMERO, NIMI) values ('A-2', 'Tee')"})
            m_shop.exec(str(sql));
        m_form = std::make_unique<TAlvMuutosLomake>(m_shop.database());
        m_form->setAttribute(Qt::WA_DeleteOnClose, false);
        m_form->show();
        for (QCheckBox* box : m_form->findChildren<QCheckBox*>()) {
            if (QStringList{str("AliryhmaCheckBox"), str("TuoteryhmaCheckBox"),
                            str("PaaryhmaCheckBox"), str("TuotenroCheckBox")}
                    .contains(box->objectName()))
                box->click();
        }
    }

    QLineEdit* edit(const char* name) const { return m_form->findChild<QLineEdit*>(str(name)); }
    void press(const char* button) const {
        auto* found = m_form->findChild<QPushButton*>(str(button));
        ASSERT_NE(found, nullptr) << button;
        EXPECT_TRUE(found->isVisible()) << button;
        QTest::mouseClick(found, Qt::LeftButton);
    }
    template <class Window>
    Window* window() const {
        return m_form->findChild<Window*>();
    }
    /// Drags a text out of a search window's grid onto an edit.
    static void drop(QWidget* target, const QString& text) {
        const std::unique_ptr<QMimeData> data(search::dragData(str("DBGrid1"), text));
        const QPoint place = target->rect().center();
        QDragEnterEvent enter(place, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(target, &enter);
        if (!enter.isAccepted())
            return;
        QDropEvent dropped(place, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(target, &dropped);
        EXPECT_TRUE(dropped.isAccepted());
    }

    test::ScriptedDialogs m_dialogs;
    test::ShopCompany m_shop;
    std::unique_ptr<TAlvMuutosLomake> m_form;
};

TEST_F(SearchWindows, ButtonsPutTheChosenNumberIntoTheStartEdit) {
    const auto chooseSecond = [](search::TBtrHakuForm* form) {
        ASSERT_NE(form, nullptr);
        EXPECT_TRUE(form->isVisible());
        EXPECT_FALSE(form->isModal());
        form->DBGrid1->setFocus();
        QTest::keyClick(form->DBGrid1, Qt::Key_Down);
        QTest::keyClick(form->DBGrid1, Qt::Key_Return);
        EXPECT_FALSE(form->isVisible());
    };
    press("AliryhmaHakuButton");
    chooseSecond(window<search::TArHakuForm>());
    EXPECT_EQ(edit("AliryhmaAlkuEdit")->text().toStdString(), "102");
    press("TuoteryhmaHakuButton");
    chooseSecond(window<search::TTrHakuForm>());
    EXPECT_EQ(edit("TuoteryhmaAlkuEdit")->text().toStdString(), "20");
    press("PaaryhmaHakuButton");
    chooseSecond(window<search::TPrHakuForm>());
    EXPECT_EQ(edit("PaaryhmaAlkuEdit")->text().toStdString(), "2");
    press("TuotehakuButton");
    chooseSecond(window<search::TTuoteHakuForm>());
    EXPECT_EQ(edit("TuotenroAlkuEdit")->text().toStdString(), "A-2");
    for (const char* name : {"AliryhmaLoppuEdit", "TuoteryhmaLoppuEdit", "PaaryhmaLoppuEdit"})
        EXPECT_EQ(edit(name)->text().toStdString(), "0") << name;
}

TEST_F(SearchWindows, WindowOpensAtThePresentNumberAndIsKeptForTheForm) {
    edit("TuoteryhmaAlkuEdit")->setText(str("15"));
    press("TuoteryhmaHakuButton");
    QPointer<search::TTrHakuForm> first = window<search::TTrHakuForm>();
    EXPECT_EQ(first->KenttaArvo(str("Nro")).toInt(), 20);  // the nearest
    QTest::keyClick(first->DBGrid1, Qt::Key_Escape);
    EXPECT_FALSE(first->isVisible());
    EXPECT_EQ(edit("TuoteryhmaAlkuEdit")->text().toStdString(), "15");

    first->selectIndex(1);  // by name: the present number says nothing there
    edit("TuoteryhmaAlkuEdit")->setText(str("10"));
    press("TuoteryhmaHakuButton");
    EXPECT_EQ(window<search::TTrHakuForm>(), first);
    EXPECT_EQ(first->Hakutable->indexName(), str("1"));
    EXPECT_EQ(first->KenttaArvo(str("Nro")).toInt(), 20);

    m_form.reset();
    EXPECT_TRUE(first.isNull());
}

TEST_F(SearchWindows, RangeEditsTakeADraggedNumberInPlaceOfTheirText) {
    const struct {
        const char* edit;
        const char* dragged;
        const char* text;
    } cases[] = {
        {"AliryhmaAlkuEdit", "102", "102"},   {"AliryhmaLoppuEdit", "103", "103"},
        {"TuoteryhmaAlkuEdit", "10", "10"},   {"TuoteryhmaLoppuEdit", "20", "20"},
        {"PaaryhmaAlkuEdit", "1", "1"},       {"PaaryhmaLoppuEdit", " 2 ", "2"},
        {"TuotenroAlkuEdit", "A-1", "A-1"},   {"TuotenroLoppuEdit", "A-2", "A-2"},
        {"PaaryhmaLoppuEdit", "Muut", "2"},  // no number
        {"TuotenroAlkuEdit", "B 77", "B 77"},
    };
    for (const auto& c : cases) {
        drop(edit(c.edit), str(c.dragged));
        EXPECT_EQ(edit(c.edit)->text().toStdString(), c.text) << c.edit;
    }
}

}  // namespace
