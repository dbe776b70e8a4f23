#include <QLayout>
#include <QScrollBar>

#include "platform/user_settings.h"
#include "search/group_haku.h"
#include "tests/search/product_support.h"

namespace {

using test::str;

class GroupForms : public ::testing::Test {
  protected:
    GroupForms() {
        for (const char* groups :
             {"TRYHMA (Nro, Nimi, OnWebKaupassa) values (10, 'Juomat', 1)",
              "TRYHMA (Nro, Nimi, OnWebKaupassa) values (20, 'Tupakka', 0)",
              "TRYHMA (Nro, Nimi, OnWebKaupassa) values (30, 'Lehdet', 0)",
              "PRYHMA (NRO, nimi, OnWebKaupassa) values (1, 'Elintarvikkeet', 1)",
              "PRYHMA (NRO, nimi, OnWebKaupassa) values (2, 'Palvelut', 0)",
              "PRYHMA (NRO, nimi, OnWebKaupassa) values (3, 'Muut', 0)",
              "ALIRYHMA (Nro, Nimi, Verkkokaupassa) values (1001, 'Kahvit', 1)",
              "ALIRYHMA (Nro, Nimi, Verkkokaupassa) values (2001, 'Sikarit', 0)",
              "ALIRYHMA (Nro, Nimi, Verkkokaupassa) values (2002, 'Nuuska', 0)"})
            m_shop.exec(str("insert into ") + str(groups));
    }
    /// Which cells are red in their lower left corner, where no text is, by rows: 'R' or '.'. The
    /// focus frame may tint a cell.
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
                const QColor colour = image.pixelColor(place);
                cells += colour.red() > 2 * std::max(colour.green(), colour.blue()) ? u'R' : u'.';
            }
            rows += cells;
        }
        return rows.join(u'|');
    }

    test::ShopCompany m_shop;
    test::ScriptedDialogs m_dialogs;
};

TEST_F(GroupForms, RowsOutsideTheWebShopAreRedButTheFocusedCell) {
    const auto check = [](search::TBtrHakuForm&& form, int row, int column, const char* red) {
        test::showForm(form);
        form.resize(900, 400);
        form.DBGrid1->setFocus();
        form.DBGrid1->setCurrentIndex(form.model().index(row, column));
        EXPECT_EQ(redCells(form).toStdString(), red) << form.objectName().toStdString();
        EXPECT_EQ(form.SelitysLabel->isVisible(), str(red).contains(u'R'));
    };
    check(search::TTrHakuForm(), 0, 0, "....|....|....");
    check(search::TPrHakuForm(), 0, 0, "....|RRRR|RRRR");
    check(search::TArHakuForm(), 0, 0, "....|....|....");
    m_shop.exec(str("insert into ini values ('ZAV.INI', 'VERKKOKAUPPA', 'Kaytossa', '1')"));
    check(search::TTrHakuForm(), 1, 2, "....|RR.R|RRRR");
    check(search::TPrHakuForm(), 1, 2, "....|RR.R|RRRR");
    check(search::TArHakuForm(), 2, 0, "....|RRRR|.RRR");
}

TEST_F(GroupForms, ColumnsInTheirOrder) {
    const auto check = [](const search::TBtrHakuForm& form, const char* flag, const char* columns) {
        EXPECT_EQ(form.resultField(), str("Nro"));
        EXPECT_EQ(test::columnTexts(form, str(flag)), QStringList({"K", "E", "E"}));
        EXPECT_EQ(test::columnNames(form).join(u' ').toStdString(), columns);
    };
    check(search::TPrHakuForm(), "OnWebKaupassa",
          "NRO nimi tili OnWebKaupassa WebKauppaJarjestys MuutosPvm MuutosKlo -Osasto Nimi2 "
          "-RyhmaTyyppi -Jemma KeittioRyhma");
    check(search::TArHakuForm(), "Verkkokaupassa", "Nro Nimi TuoteRyhma Verkkokaupassa");
    const search::TTrHakuForm groups;  // every field of the table
    EXPECT_EQ(test::columnNames(groups).size(), 41);
    for (const auto& column : groups.model().columns())
        EXPECT_FALSE(column.title.isEmpty()) << column.field.toStdString();
}

TEST_F(GroupForms, EnterSearchesByNameOrNumberAtOnce) {
    search::TTrHakuForm form;
    test::showForm(form);
    const std::tuple<QLineEdit*, const char*, int, const char*> cases[] = {
        {form.Suodatin, "tup", 1, "20"},
        {form.Suodatin, "30", 0, "30"},
        {form.SearchEdit, "20", 0, "20"},
    };
    for (const auto& [edit, typed, order, found] : cases) {
        edit->setFocus();
        edit->setText(str(typed));
        QTest::keyClick(edit, Qt::Key_Return);
        EXPECT_EQ(form.IndexCombo->currentIndex(), order) << typed;
        EXPECT_EQ(form.KenttaArvo(str("Nro")).toString().toStdString(), found);
        EXPECT_EQ(form.DBGrid1->hasFocus(), edit == form.SearchEdit);
    }
    form.SearchEdit->setFocus();
    form.SearchEdit->setText(str("25"));  // the nearest is another number
    QTest::keyClick(form.SearchEdit, Qt::Key_Return);
    EXPECT_TRUE(form.SearchEdit->hasFocus());
}

// The last size is kept, but no size smaller than the first one.
TEST_F(GroupForms, OpenAtLeastInTheirFirstSize) {
    const std::pair<QSize, QSize> sizes[] = {{{150, 500}, {505, 500}}, {{600, 200}, {600, 336}}};
    for (const auto& [left, opened] : sizes) {
        search::TArHakuForm last;
        last.setMinimumSize(1, 1);
        last.layout()->setSizeConstraint(QLayout::SetNoConstraint);
        last.resize(left);
        last.show();
        last.hide();
        EXPECT_EQ(search::TArHakuForm().size(), opened);
    }
    platform::userSettings()->clear();
}

}  // namespace
