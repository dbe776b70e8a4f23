#include <QScrollBar>
#include <QSettings>

#include "app/company/user_settings.h"
#include "search/group_haku.h"
#include "tests/search/product_support.h"

namespace {

QString str(const char* text) {
    return QString::fromUtf8(text);
}

class GroupForms : public ::testing::Test {
  protected:
    GroupForms() {
        for (const char* sql :
             {"insert into TRYHMA (Nro, Nimi, OnWebKaupassa) values (10, 'Juomat', 1)",
              "insert into TRYHMA (Nro, Nimi, OnWebKaupassa) values (20, 'Tupakka', 0)",
              "insert into TRYHMA (Nro, Nimi, OnWebKaupassa) values (30, 'Lehdet', 0)",
              "insert into PRYHMA (NRO, nimi, tili, OnWebKaupassa, WebKauppaJarjestys) "
              "values (1, 'Elintarvikkeet', '3000', 1, 10)",
              "insert into PRYHMA (NRO, nimi, OnWebKaupassa) values (2, 'Palvelut', 0)",
              "insert into PRYHMA (NRO, nimi, OnWebKaupassa) values (3, 'Muut', 0)",
              "insert into ALIRYHMA (Nro, Nimi, TuoteRyhma, Verkkokaupassa) "
              "values (1001, 'Kahvit', 10, 1)",
              "insert into ALIRYHMA (Nro, Nimi, TuoteRyhma, Verkkokaupassa) "
              "values (2001, 'Sikarit', 20, 0)",
              "insert into ALIRYHMA (Nro, Nimi, TuoteRyhma, Verkkokaupassa) "
              "values (2002, 'Nuuska', 20, 0)"})
            m_shop.exec(str(sql));
    }
    void useWebShop() {
        m_shop.exec(str("insert into ini values ('ZAV.INI', 'VERKKOKAUPPA', 'Kaytossa', '1')"));
    }

    /// The colour of each cell's lower left corner (no text and no frame there), by rows: 'R' for
    /// pure red, '.' for anything else.
    static QString redCells(search::TBtrHakuForm& form) {
        QTableView& grid = *form.DBGrid1;
        grid.horizontalScrollBar()->setValue(0);
        QApplication::processEvents();
        const QImage image = grid.viewport()->grab().toImage();
        QStringList rows;
        for (int row = 0; row < grid.model()->rowCount(); ++row) {
            QString cells;
            for (int column = 0; column < 4; ++column) {
                const QRect cell = grid.visualRect(grid.model()->index(row, column));
                const QPoint place(cell.left() + 2, cell.bottom() - 3);
                cells += image.pixelColor(place) == QColor(255, 0, 0) ? u'R' : u'.';
            }
            rows += cells;
        }
        return rows.join(u'|');
    }

    test::ShopCompany m_shop;
    test::ScriptedDialogs m_dialogs;
};

TEST_F(GroupForms, RowsOutsideTheWebShopAreRedButTheFocusedCell) {
    useWebShop();
    const auto check = [](search::TBtrHakuForm& form) {
        test::showForm(form);
        form.resize(900, 400);
        form.DBGrid1->setFocus();
        QApplication::processEvents();
        form.DBGrid1->setCurrentIndex(form.model().index(0, 0));
        EXPECT_EQ(redCells(form).toStdString(), "....|RRRR|RRRR")
            << form.objectName().toStdString();
        form.DBGrid1->setCurrentIndex(form.model().index(1, 2));
        EXPECT_EQ(redCells(form).toStdString(), "....|RR.R|RRRR")
            << form.objectName().toStdString();
    };
    search::TTrHakuForm productGroups;
    check(productGroups);
    search::TPrHakuForm mainGroups;
    check(mainGroups);
    search::TArHakuForm subGroups;
    check(subGroups);
}

TEST_F(GroupForms, WithoutTheWebShopOnlyMainGroupsAreRed) {
    const auto check = [](search::TBtrHakuForm& form, const char* red) {
        test::showForm(form);
        form.resize(900, 400);
        form.DBGrid1->setCurrentIndex(form.model().index(0, 0));
        EXPECT_EQ(redCells(form).toStdString(), red) << form.objectName().toStdString();
    };
    search::TTrHakuForm productGroups;
    check(productGroups, "....|....|....");
    search::TPrHakuForm mainGroups;
    check(mainGroups, "....|RRRR|RRRR");
    search::TArHakuForm subGroups;
    check(subGroups, "....|....|....");
}

TEST_F(GroupForms, ColumnsAndCaptions) {
    search::TPrHakuForm mainGroups;
    EXPECT_EQ(mainGroups.windowTitle().toStdString(), "Pääryhmän haku");
    QStringList shown;
    QStringList hidden;
    for (int column = 0; column < mainGroups.model().columnCount(); ++column) {
        const QString field = mainGroups.model().column(column).field;
        (mainGroups.DBGrid1->isColumnHidden(column) ? hidden : shown).append(field);
    }
    EXPECT_EQ(shown.join(u' ').toStdString(),
              "NRO nimi tili OnWebKaupassa WebKauppaJarjestys MuutosPvm MuutosKlo Nimi2 "
              "KeittioRyhma");
    EXPECT_EQ(hidden.join(u' ').toStdString(), "Osasto RyhmaTyyppi Jemma");
    EXPECT_EQ(test::columnTexts(mainGroups, str("OnWebKaupassa")).join(u' ').toStdString(),
              "K E E");
    EXPECT_EQ(mainGroups.model().headerData(3, Qt::Horizontal, Qt::DisplayRole).toString(),
              str("Verkkokaupassa"));

    search::TArHakuForm subGroups;
    EXPECT_EQ(subGroups.windowTitle().toStdString(), "Aliryhmän haku");
    EXPECT_EQ(subGroups.model().columnCount(), 4);
    EXPECT_EQ(test::columnTexts(subGroups, str("Verkkokaupassa")).join(u' ').toStdString(),
              "K E E");

    search::TTrHakuForm productGroups;
    EXPECT_EQ(productGroups.windowTitle().toStdString(), "Tuoteryhmän haku");
    EXPECT_EQ(productGroups.model().columnCount(), 41);  // every field of the table
    EXPECT_EQ(test::columnTexts(productGroups, str("OnWebKaupassa")).join(u' ').toStdString(),
              "K E E");
}

TEST_F(GroupForms, ClientSizes) {
    company::userSettings()->clear();  // places of windows that other tests have closed
    search::TTrHakuForm productGroups;
    EXPECT_EQ(productGroups.width(), 360);
    search::TPrHakuForm mainGroups;
    EXPECT_EQ(mainGroups.size(), QSize(512, 470));
    search::TArHakuForm subGroups;
    EXPECT_EQ(subGroups.size(), QSize(505, 336));
}

TEST_F(GroupForms, ChoiceGivesTheGroupNumber) {
    QString chosen;
    search::TArHakuForm form;
    form.setChooseHandler([&](QTableView* sender, const data::TtbTable& record) {
        EXPECT_EQ(sender, form.DBGrid1);
        chosen = record.fieldByName(form.resultField()).asString();
    });
    form.Jatahakuauki->setChecked(true);
    test::showForm(form);
    const QRect cell = form.DBGrid1->visualRect(form.model().index(1, 1));
    QTest::mouseClick(form.DBGrid1->viewport(), Qt::LeftButton, {}, cell.center());
    QTest::mouseDClick(form.DBGrid1->viewport(), Qt::LeftButton, {}, cell.center());
    EXPECT_EQ(chosen.toStdString(), "2001");
    EXPECT_TRUE(form.isVisible());

    form.Jatahakuauki->setChecked(false);
    form.DBGrid1->setFocus();
    QTest::keyClick(form.DBGrid1, Qt::Key_Down);
    QTest::keyClick(form.DBGrid1, Qt::Key_Return);
    EXPECT_EQ(chosen.toStdString(), "2002");
    EXPECT_FALSE(form.isVisible());
}

TEST_F(GroupForms, OneInstanceUntilItIsDestroyed) {
    QWidget owner;
    search::TTrHakuForm* first = search::TTrHakuForm::instanssi(&owner);
    EXPECT_EQ(search::TTrHakuForm::instanssi(&owner), first);
    first->lisaaKayttaja(str("Koe"));
    first->show();
    first->close();  // kept for its user
    EXPECT_EQ(search::TTrHakuForm::instanssi(&owner), first);

    first->poistaKayttaja(str("Koe"));
    first->show();
    first->close();
    search::TTrHakuForm* second = search::TTrHakuForm::instanssi(&owner);
    EXPECT_NE(second, first);
    delete second;
    QPointer<search::TTrHakuForm> third = search::TTrHakuForm::instanssi(&owner);
    EXPECT_FALSE(third.isNull());
}

}  // namespace
