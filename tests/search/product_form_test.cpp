#include <QLocale>

#include "platform/ini_file.h"
#include "search/tuote_haku.h"
#include "tests/search/product_support.h"

namespace {

using test::str;

/// Products 100 to 103; 103 is passive. The store is number 2.
class ProductForm : public ::testing::Test {
  protected:
    ProductForm() {
        QLocale::setDefault(QLocale(QLocale::Finnish, QLocale::Finland));
        for (const char* sql :
             {"insert into TRYHMA (Nro, Nimi) values (7, 'Juomat')",
              "insert into TRYHMA (Nro, Nimi) values (8, 'Makeiset')",
              "insert into PRYHMA (NRO, nimi) values (1, 'Elintarvikkeet')",
              "insert into ALIRYHMA (Nro, Nimi) values (701, 'Viinit')",
              "insert into TOIMITTAJA (Tunnus, Nimi) values ('AB', 'Tukku Oy')",
              "insert into TUOTE (NUMERO, NIMI, RYHMA, PAARYHMA, AliRyhma, TOIMITTAJA, HINTA, LVV, "
              "KESKIHINTA, VIIMOSTOHINTA, OSTOVERO, VARASTOYKS, ANNOSKOKO, VARASTOKERROIN) "
              "values ('100', 'punaviini', 7, 1, 701, 'AB', 12.4, 3, 6.2, 7, 3, 'PLO', 4, 10)",
              "insert into TUOTE (NUMERO, NIMI, RYHMA, HINTA, LVV, KESKIHINTA, VIIMOSTOHINTA, "
              "OSTOVERO, OstohintaEiNay, VARASTOYKS) "
              "values ('101', 'Kahvi', 8, 5.1234, 2, 2.28, 3, 2, 1, 'KPL')",
              "insert into TUOTE (NUMERO, NIMI, RYHMA, TOIMITTAJA, HINTA, LVV, KESKIHINTA) "
              "values ('102', 'suklaa', 8, 'A', 10, 99, 4)",
              "insert into TUOTE (NUMERO, NIMI, Passiivinen) values ('103', 'Vanha', 1)",
              "update HINTATASO set nimi = 'Kuluttaja ' where Nro = 1",
              "update HINTATASO set nimi = 'Tukku' where Nro = 3",
              "insert into TUOTE2 (Numero, Tuotelaji) values ('101', 3)"})
            m_shop.exec(str(sql));
        for (const char* stock : {"2, '100', 3.25, 0, 2, 1, 'A1-2'",
                                  "2, '101', 5, 0.5, 2, 3, 'B1  A7'", "1, '102', 77, 0, 0, 0, 'A9'",
                                  "2, '103', 1, 0, 0, 0, 'A3'", "3, '101', 1, 0, 0, 0, 'A8'"})
            m_shop.exec(str("insert into VARSALDO (VARASTO, TUOTE, SALDO, ODOTUS, TILATTU, "
                            "VARATTU, Hyllypaikka) values (%1)")
                            .arg(str(stock)));
        set("ASETUKSIA", "Myymala", "2");
    }
    ~ProductForm() override { QLocale::setDefault(QLocale::c()); }

    void set(const char* section, const char* key, const char* value) {
        m_shop.exec(QStringLiteral("insert into ini values ('ZAV.INI', '%1', '%2', '%3')")
                        .arg(str(section), str(key), str(value)));
    }

    static void drop(search::TTuoteHakuForm& form, const char* text, const char* field) {
        form.Suodatin->setText(str(text));
        form.dropText(str(text), form.model().columnOf(str(field)));
    }

    static std::string numbers(const search::TTuoteHakuForm& form) {
        return test::columnTexts(form, str("NUMERO")).join(u' ').toStdString();
    }

    test::ShopCompany m_shop;
    test::ScriptedDialogs m_dialogs;
};

TEST_F(ProductForm, ComputedColumns) {
    search::TTuoteHakuForm form;
    EXPECT_EQ(form.resultField(), str("numero"));
    EXPECT_EQ(numbers(form), "100 101 102");  // 103 is passive
    const QStringList fields = test::columnNames(form);
    EXPECT_EQ(fields.mid(0, 11).join(u' ').toStdString(),
              "NUMERO RYHMA PAARYHMA NIMI HINTA AliRyhma -HintaProsentteina -VIIMSISOSTO "
              "-VIIMOSTOHINTA TOIMITTAJA -OTETTUEKA");
    QStringList shown;
    for (int i = 0; i < form.model().columnCount(); ++i)
        if (!form.DBGrid1->isColumnHidden(i))
            shown.append(form.model().headerData(i, Qt::Horizontal, Qt::DisplayRole).toString());
    EXPECT_EQ(shown.join(u'/').toStdString(),
              "Numero/Tuoteyhmä/Pääryhmä/Nimi/Kuluttaja/Aliryhmä/Toimittaja/Alv/Hinta 2/Tukku/"
              "Saldo/Vapaa");
    EXPECT_EQ(form.IndexCombo->itemText(4), str("Toimittaja, Toimittajan tuotetunnus"));
    EXPECT_EQ(fields.mid(fields.size() - 8).join(u' ').toStdString(),
              "Saldo -Tilattu -Varattu Vapaa -VarastoTilanne -Hyllypaikka -HintaAlv0 -OhHintaALV0");
    const struct {
        const char* field;
        const char* shown[3];  // by product
    } columns[] = {
        {"RYHMA", {"Juomat", "Makeiset", "Makeiset"}},
        {"PAARYHMA", {"Elintarvikkeet", "", ""}},
        {"AliRyhma", {"Viinit", "", ""}},
        {"TOIMITTAJA", {"Tukku Oy", "", ""}},
        {"HINTA", {"12,40", "5,12", "10,00"}},
        {"Saldo", {"3P 10,0cl", "5", ""}},
        {"Tilattu", {"2P 0,0cl", "2", ""}},
        {"Varattu", {"1P 0,0cl", "3", ""}},
        {"Vapaa", {"4P 10,0cl", "4,5", ""}},
        {"VarastoTilanne", {"3P 10,0cl=0P 0,0cl/2P 0,0cl,  1P 0,0cl", "5=0,5/2,  3", ""}},
        {"Hyllypaikka", {"A1-2", "B1 A7", ""}},
        {"HintaAlv0", {"10,00", "4,49", "10,00"}},  // 12.4/1.24, 5.1234/1.14, no such class
        {"OhHintaALV0", {"5,00", "", "4,00"}},      // 6.2/1.24; 101 hides its own
        {"VIIMOSTOHINTA", {"7,00", "", "0,00"}},
        {"KESKIHINTA", {"6,20", "", "4,00"}},
    };
    EXPECT_EQ(form.tuotelaji(str("101")), 3);
    EXPECT_EQ(form.tuotelaji(str("100")), 0);
    for (const auto& column : columns)
        for (int row = 0; row < 3; ++row)
            EXPECT_EQ(test::cellText(form, row, str(column.field)).toStdString(), column.shown[row])
                << column.field;
}

TEST_F(ProductForm, SettingsDecideWhatIsShown) {
    set("ASETUKSIA", "Tuotehintamuoto", "####.###");
    set("ASETUKSIA", "OstoHintaEiNay", "1");
    {
        search::TTuoteHakuForm form;
        EXPECT_EQ(test::cellText(form, 0, str("HINTA")).toStdString(), "12,400");
        EXPECT_EQ(test::cellText(form, 0, str("HINTA9")).toStdString(), "0,000");
        for (const char* field : {"OhHintaALV0", "VIIMOSTOHINTA", "KESKIHINTA"})
            EXPECT_EQ(test::cellText(form, 0, str(field)).toStdString(), "") << field;
        const int webShop = form.model().columnOf(str("Verkkokauppa"));
        EXPECT_TRUE(webShop < 0 || form.DBGrid1->isColumnHidden(webShop));
    }
    m_shop.exec(str("update ini set data = '#####' where avain = 'Tuotehintamuoto'"));
    set("VERKKOKAUPPA", "Kaytossa", "1");
    search::TTuoteHakuForm form;
    EXPECT_EQ(test::cellText(form, 0, str("HINTA")).toStdString(), "12");
    const int webShop = form.model().columnOf(str("Verkkokauppa"));
    ASSERT_GE(webShop, 0);
    EXPECT_FALSE(form.DBGrid1->isColumnHidden(webShop));
}

TEST_F(ProductForm, StockColumnsCanBeLeftOutAndStayOutWithTheLayout) {
    {
        search::TTuoteHakuForm form;
        form.NaytaSaldot->click();
        EXPECT_EQ(test::cellText(form, 0, str("Saldo")).toStdString(), "");
        EXPECT_EQ(test::cellText(form, 0, str("VarastoTilanne")).toStdString(), "");
        EXPECT_EQ(test::cellText(form, 0, str("Hyllypaikka")).toStdString(), "A1-2");
        form.Tallenna->trigger();
    }
    const auto saved = platform::IniFile::read(m_shop.file(str("FORMS.INI")));
    EXPECT_EQ(saved.value(str("TuoteHakuForm"), str("NaytaSaldot")), str("0"));
    search::TTuoteHakuForm form;
    EXPECT_FALSE(form.NaytaSaldot->isChecked());
    EXPECT_EQ(test::cellText(form, 0, str("Vapaa")).toStdString(), "");
    form.NaytaSaldot->click();
    EXPECT_EQ(test::cellText(form, 0, str("Vapaa")).toStdString(), "4P 10,0cl");
}

TEST_F(ProductForm, EnterSearchesByNameOrNumber) {
    search::TTuoteHakuForm form;
    test::showForm(form);
    const std::tuple<const char*, const char*, const char*> cases[] = {// key, product
                                                                       {"suk", "5", "102"},
                                                                       {"kah", "5", "101"},
                                                                       {"101", "1", "101"},
                                                                       {"1005", "1", "101"},
                                                                       {"p", "5", "100"}};
    for (const auto& [typed, index, found] : cases) {
        form.Suodatin->setFocus();
        form.Suodatin->setText(str(typed));
        QTest::keyClick(form.Suodatin, Qt::Key_Return);
        EXPECT_EQ(form.Hakutable->indexName().toStdString(), index) << typed;
        EXPECT_EQ(form.KenttaArvo(str("NUMERO")).toString().toStdString(), found) << typed;
    }
    EXPECT_TRUE(form.isVisible());  // Enter in the edit chooses nothing

    // With the range restriction Enter limits the rows instead.
    form.gotoNearest(str("1"), str("100"));
    form.AlueRajaus->setChecked(true);
    form.Suodatin->setText(str("102"));
    QTest::keyClick(form.Suodatin, Qt::Key_Return);
    EXPECT_EQ(numbers(form), "102");
}

TEST_F(ProductForm, DropsOnGroupNamesAndShelfPlaces) {
    search::TTuoteHakuForm form;
    test::showForm(form);
    // Group names have no comparison: its signs are dropped. Supplier codes are not names. 101 and
    // 102 have shelf places "A" in other stores; 103 is passive.
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"mak", "RYHMA", "101 102"},      {">=8", "RYHMA", "101 102"},
        {"<>mak", "RYHMA", "101 102"},    {"xyz", "RYHMA", ""},
        {"tukku", "TOIMITTAJA", "100"},   {"AB", "TOIMITTAJA", ""},
        {"A", "Hyllypaikka", "100"},      {"a1", "Hyllypaikka", "100"},
        {"*A", "Hyllypaikka", "100 101"}, {">=B", "Hyllypaikka", "101"},
        {"o'", "Hyllypaikka", ""}};
    for (const auto& [text, field, found] : cases) {
        drop(form, text, field);
        EXPECT_EQ(numbers(form), found) << text << " on " << field;
    }
    drop(form, "mak", "RYHMA");
    EXPECT_EQ(form.EhtoLabel->text().toStdString(), "Tuoteyhmä = Makeiset");
    drop(form, "xyz", "RYHMA");
    EXPECT_EQ(form.EhtoLabel->text().toStdString(), "Tuoteyhmä alkaa \"xyz\" (ei löydy)");
    EXPECT_FALSE(form.EhtoLabel->toolTip().contains(str("'0'")));
    form.PoistaRajaus->click();
    EXPECT_TRUE(form.Suodatin->text().isEmpty() && form.EhtoLabel->isHidden());
    EXPECT_EQ(numbers(form), "100 101 102");
    form.Passiiviset->click();
    drop(form, "A", "Hyllypaikka");
    EXPECT_EQ(numbers(form), "100 103");
}

TEST_F(ProductForm, ShownAndClosedAsTheOneWindow) {
    using search::TTuoteHakuForm;
    TTuoteHakuForm::SuljeHaku();  // nothing to close
    QWidget owner;
    TTuoteHakuForm::NaytaLomake(&owner);
    TTuoteHakuForm* form = TTuoteHakuForm::instanssi(&owner);
    form->lisaaKayttaja(str("Koe"));
    for (const bool kept : {true, false}) {  // for its user
        EXPECT_TRUE(form->isVisible());
        TTuoteHakuForm::SuljeHaku();
        EXPECT_FALSE(form->isVisible());
        EXPECT_EQ(TTuoteHakuForm::instanssi(&owner) == form, kept);
        form->poistaKayttaja(str("Koe"));
        if (kept)
            TTuoteHakuForm::NaytaLomake(&owner);
    }
    delete TTuoteHakuForm::instanssi(&owner);
    EXPECT_NE(TTuoteHakuForm::instanssi(&owner), nullptr);
}

TEST_F(ProductForm, AnUnreadableColumnIsReportedOnceAndStaysEmpty) {
    search::TTuoteHakuForm form;
    search::GridColumn broken{str("NIMI"), str("Nimi")};
    broken.text = [](const search::GridRow&) -> QString {
        throw data::DataError(data::ErrorKind::Io, str("VARSALDO"), str("read error"));
    };
    form.model().setColumns({broken});
    QStringList told;
    QObject::connect(&form.model(), &search::TableModel::failed,
                     [&](const QString& text) { told.append(text); });
    m_dialogs.expectMessage(
        data::DataError(data::ErrorKind::Io, str("VARSALDO"), str("read error")).finnish());
    for (int row = 0; row < 3; ++row)
        EXPECT_EQ(form.model().index(row, 0).data().toString().toStdString(), "");
    QApplication::processEvents();
    EXPECT_EQ(told.size(), 1);
}

}  // namespace
