// The demo company: the same data wherever and whenever it is made, and data that fits together.

#include "tests/tools/zavdb_program.h"

namespace {

class Demo : public test::ZavdbProgram {
  protected:
    QMap<QString, QByteArray> tables(const QString& company, const QStringList& environment = {}) {
        QMap<QString, QByteArray> result;
        for (const QString& table : tableNames(company))
            result[table] = done({"export", company, table}, environment);
        return result;
    }
};

TEST_F(Demo, TheSameSeedGivesTheSameData) {
    const QStringList elsewhere = {"TZ=Asia/Tokyo", "LC_ALL=C"};
    done({"demo", "One", "one", "--products", "120", "--seed", "7"});
    done({"demo", "Two", "two", "--seed", "7", "--products", "120"}, elsewhere);
    done({"demo", "Other", "other", "--products", "120", "--seed", "8"});
    EXPECT_EQ(tables("One"), tables("Two", elsewhere));
    EXPECT_NE(done({"export", "One", "TUOTE"}), done({"export", "Other", "TUOTE"}));
}

// Each statement counts rows that would be wrong.
TEST_F(Demo, RowsFitTogether) {
    done({"demo", "D", "d", "--products", "600"});
    done({"check", "D"});
    const QByteArray zero("n\r\n0\r\n");
    const auto count = [this](const QString& rows) {
        return done({"sql", "D", "select count(*) as n from " + rows});
    };
    const char* const faults[] = {
        "TUOTE where not exists (select * from TRYHMA where Nro = RYHMA and PaaRyhma = "
        "TUOTE.PAARYHMA)",
        "TUOTE where not exists (select * from ALIRYHMA where Nro = AliRyhma and TuoteRyhma = "
        "RYHMA)",
        "TUOTE where not exists (select * from TOIMITTAJA where Tunnus = TOIMITTAJA)",
        "TUOTE where LVV <> 0 and not exists (select * from ALVKANTA where luokka = LVV)",
        "TUOTE where maaraAle <> 0 and not exists (select * from MAARAALE where Numero = maaraAle)",
        "TUOTE where HINTA <= 0 or KESKIHINTA <= 0 or NIMI = ''",
        "VERKKOKAUPASSA where Tuote not in (select NUMERO from TUOTE where Verkkokauppa = 1)",
        "ASALE where Tuote not in (select NUMERO from TUOTE)",
        "ASALE where AsikasTyyppi = 0 and AsiakasNumero not in (select Asiakas from ASIAKAS)",
        "ASALE where AsikasTyyppi <> 0 and AsiakasNumero not in (select Nro from ASRYHMA)",
        "KAMPPANJA where Tuote not in (select NUMERO from TUOTE)",
        "VAKIOLASKUTUS where abs(Yhteensa - ahinta * Maara) > 0.006",
        "ASIAKAS where Ryhma not in (select Nro from ASRYHMA)",
        "MT where Asiakas not in (select Asiakas from ASIAKAS)",
        "MTRIVI where TilausNro not in (select Numero from MT)",
        "MTRIVI where Tuote not in (select NUMERO from TUOTE)",
        "WINOTRI where TilausNro not in (select TilausNro from WINOT)",
        // prices with and without VAT agree
        "MYYMALAHINNAT, TUOTE, ALVKANTA where Tuote = NUMERO and luokka = LVV and "
        "abs(Hinta1Alv0 * (1 + Prosentti / 100) - Hinta1) > 1e-9",
        "MTRIVI, ALVKANTA where luokka = Verokanta and "
        "abs(AhintaAlv0 * (1 + Prosentti / 100) - Ahinta) > 1e-9",
        "WINOTRI, ALVKANTA where luokka = AlvLuokka and "
        "abs(OstoHintaAlv0 * (1 + Prosentti / 100) - OstoHinta) > 1e-9",
        // rows and totals agree
        "MTRIVI where abs(Netto - Ahinta * Maara * (1 - Alennus / 100)) > 0.006",
        "MT where abs(Summa - (select sum(Netto) from MTRIVI where TilausNro = Numero and "
        "RakenneEmo = 0 and PakettiLapsi = 0 and OnVariKokoEmo = 0)) > 0.006",
        "WINOT where abs(Summa - (select coalesce(sum(WINOTRI.Summa), 0) from WINOTRI where "
        "WINOTRI.TilausNro = WINOT.TilausNro and VariKokoLapsi = 0)) > 1e-6",
    };
    for (const char* fault : faults)
        EXPECT_EQ(count(fault), zero) << fault;
    // cases that a change of the rates has to meet
    const struct {
        const char* table;
        std::vector<const char*> conditions;
    } present[] = {
        {"TUOTE",
         {"LVV = 1", "Alv2 = 1 and LVV = 2", "OSTOVERO = 4", "KAKSOISHINTA = 0", "KAKSOISHINTA > 0",
          "HINTA9 > 0", "HRKPL > 0", "Verkkokauppa = 1", "Verkkokauppa = 1 and NUMERO like '% %'",
          "NIMI like '%ä%'"}},
        {"ASALE", {"AsikasTyyppi = 2 and Prosentteina = 0", "Prosentteina = 1"}},
        {"KAMPPANJA", {"Loppu = ''", "Loppu = '2024-08-31'", "Loppu > '2024-09-01'"}},
        {"MAARAALE", {"Loppu = ''"}},
        {"MT", {"Veloitustapa in (14, 16) and Toimitustila <= 3", "Toimitustila > 3"}},
        {"MTRIVI",
         {"Toimitettava = 0", "Alennus > 0", "Maara < 0", "RakenneEmo = 1", "PakettiLapsi = 1"}},
        {"WINOT", {"Tila > 4"}},
        {"WINOTRI", {"VariKokoLapsi = 1"}},
        {"HR", {"Tyyppi = 1"}},
        {"WEBKLIITOS", {"Tyyppi = 'L'"}},
        {"INI", {"IniNimi = 'ZAV.INI'"}},
        {"HINTATASO", {"Nimi = 'Vähittäishinta'"}},
    };
    for (const auto& [table, conditions] : present)
        for (const char* condition : conditions)
            EXPECT_NE(count(QString::fromUtf8(table) + " where " + condition), zero) << condition;
}

}  // namespace
