// The demo company: the same data wherever and whenever it is made, and data that fits together.

#include "tests/tools/zavdb_program.h"

namespace {

class Demo : public test::ZavdbProgram {
  protected:
    QMap<QString, QByteArray> tables(const QString& company, const QStringList& environment = {}) {
        QMap<QString, QByteArray> result;
        for (const QByteArray& line : done({"tables", company}).trimmed().split('\n')) {
            const QString table = QString::fromUtf8(line.left(line.indexOf(' ')));
            result[table] = done({"export", company, table}, environment);
        }
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
        EXPECT_EQ(done({"sql", "D", QStringLiteral("select count(*) as n from ") + fault}),
                  QByteArray("n\r\n0\r\n"))
            << fault;
    // what a change of the rates has to meet
    const char* const present[] = {
        "TUOTE where LVV = 1",
        "TUOTE where Alv2 = 1 and LVV = 2",
        "TUOTE where OSTOVERO = 4",
        "TUOTE where KAKSOISHINTA = 0",
        "TUOTE where KAKSOISHINTA > 0",
        "TUOTE where HINTA9 > 0",
        "TUOTE where HRKPL > 0",
        "TUOTE where Verkkokauppa = 1",
        "TUOTE where Verkkokauppa = 1 and NUMERO like '% %'",
        "TUOTE where NIMI like '%ä%'",
        "ASALE where AsikasTyyppi = 2 and Prosentteina = 0",
        "ASALE where Prosentteina = 1",
        "KAMPPANJA where Loppu = ''",
        "KAMPPANJA where Loppu = '2024-08-31'",
        "KAMPPANJA where Loppu > '2024-09-01'",
        "MAARAALE where Loppu = ''",
        "MT where Veloitustapa in (14, 16) and Toimitustila <= 3",
        "MT where Toimitustila > 3",
        "MTRIVI where Toimitettava = 0",
        "MTRIVI where Alennus > 0",
        "MTRIVI where Maara < 0",
        "MTRIVI where RakenneEmo = 1",
        "MTRIVI where PakettiLapsi = 1",
        "WINOT where Tila > 4",
        "WINOTRI where VariKokoLapsi = 1",
        "HR where Tyyppi = 1",
        "WEBKLIITOS where Tyyppi = 'L'",
        "INI where IniNimi = 'ZAV.INI'",
        "HINTATASO where Nimi = 'Vähittäishinta'",
    };
    for (const char* some : present)
        EXPECT_NE(done({"sql", "D", QStringLiteral("select count(*) as n from ") + some}),
                  QByteArray("n\r\n0\r\n"))
            << some;
}

}  // namespace
