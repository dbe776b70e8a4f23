#include "engines/shops/call_status.h"

#include <algorithm>
#include <iterator>

namespace engines::shops {

namespace {

struct Meaning {
    int status;
    ErrorKind kind;
    const char16_t* english;
    const char16_t* finnish;
    const char16_t* remedy;  // nullptr: the kind's usual advice
};

constexpr char16_t kCheckServer[] =
    u"Tarkista, että tietokantapalvelin on käynnissä ja verkko toimii.";
constexpr char16_t kRepair[] = u"Tarkista tiedosto tietokannan ylläpito-ohjelmalla.";
constexpr char16_t kCheckLogin[] =
    u"Tarkista yrityksen asetuksista tietokannan käyttäjätunnus ja salasana.";
constexpr char16_t kTryLater[] = u"Yritä uudelleen, kun toinen ohjelma on vapauttanut sen.";
constexpr char16_t kCallSupport[] = u"Ota yhteys tukeen.";

constexpr Meaning kMeanings[] = {
    {1, ErrorKind::Engine, u"the operation is not known", u"toiminto on tuntematon", kCallSupport},
    {2, ErrorKind::Io, u"reading or writing the file failed",
     u"tiedoston luku tai kirjoitus epäonnistui", kRepair},
    {3, ErrorKind::Engine, u"the file is not open", u"tiedosto ei ole auki", kCallSupport},
    {4, ErrorKind::Engine, u"the key value is not found", u"avaimen arvoa ei löydy", kRepair},
    {5, ErrorKind::DuplicateKey, u"a unique key has the value already",
     u"yksilöllisellä avaimella on jo sama arvo", nullptr},
    {6, ErrorKind::NoSuchField, u"the file has no such key", u"tiedostossa ei ole tätä avainta",
     nullptr},
    {7, ErrorKind::Engine, u"the key number has changed", u"avaimen numero vaihtui", kCallSupport},
    {8, ErrorKind::Engine, u"no record is current", u"nykyistä tietuetta ei ole", kCallSupport},
    {9, ErrorKind::Engine, u"the end of the file", u"tiedoston loppu", kCallSupport},
    {10, ErrorKind::BadValue, u"the key may not be modified", u"avaimen arvoa ei saa muuttaa",
     nullptr},
    {11, ErrorKind::NoSuchTable, u"the file name is not valid", u"tiedoston nimi ei kelpaa",
     nullptr},
    {12, ErrorKind::NoSuchTable, u"the file is not found", u"tiedostoa ei löydy", nullptr},
    {14, ErrorKind::Io, u"the pre-image file cannot be opened", u"palautustiedostoa ei voi avata",
     nullptr},
    {15, ErrorKind::Io, u"writing the pre-image file failed",
     u"palautustiedoston kirjoitus epäonnistui", nullptr},
    {17, ErrorKind::Io, u"closing the file failed", u"tiedoston sulkeminen epäonnistui", nullptr},
    {18, ErrorKind::DiskFull, u"the disk is full", u"levy on täynnä", nullptr},
    {20, ErrorKind::NoConnection, u"the record engine is not running",
     u"tietuekanta ei ole käynnissä", kCheckServer},
    {21, ErrorKind::Engine, u"the key buffer is too short", u"avainpuskuri on liian lyhyt",
     kCallSupport},
    {22, ErrorKind::Damaged, u"the record is longer than its table says",
     u"tietue on pitempi kuin taulun kuvaus sanoo", nullptr},
    {24, ErrorKind::Damaged, u"the file has a wrong page size", u"tiedoston sivukoko on väärä",
     kRepair},
    {30, ErrorKind::Damaged, u"the file is no record file", u"tiedosto ei ole tietuetiedosto",
     kRepair},
    {35, ErrorKind::Io, u"the folder cannot be reached", u"kansioon ei pääse", nullptr},
    {36, ErrorKind::Engine, u"the engine takes no transactions", u"tietuekanta ei salli tapahtumia",
     kCallSupport},
    {37, ErrorKind::Engine, u"another transaction is active", u"toinen tapahtuma on kesken",
     nullptr},
    {43, ErrorKind::Gone, u"no record has this address", u"tietuetta ei enää ole", nullptr},
    {44, ErrorKind::Gone, u"the record is not in this key", u"tietue ei ole tässä avaimessa",
     nullptr},
    {46, ErrorKind::ReadOnly, u"the file was opened for reading only",
     u"tiedosto on avattu vain lukua varten", nullptr},
    {51, ErrorKind::NoConnection, u"the owner name is wrong", u"tiedoston omistajanimi ei kelpaa",
     u"Tarkista yrityksen asetus OwnerName."},
    {54, ErrorKind::Damaged, u"the variable part of a record cannot be read",
     u"tietueen vaihtuvanmittaista osaa ei voi lukea", kRepair},
    {58, ErrorKind::Engine, u"the compression buffer is too short",
     u"tiivistyspuskuri on liian lyhyt", kCallSupport},
    {71, ErrorKind::Engine, u"the change breaks the referential integrity",
     u"muutos rikkoo taulujen väliset viittaukset", nullptr},
    {77, ErrorKind::Locked, u"the engine asks to try again", u"tietuekanta pyytää odottamaan",
     kTryLater},
    {78, ErrorKind::Locked, u"a deadlock", u"ohjelmat odottavat toisiaan", kTryLater},
    {80, ErrorKind::Locked, u"somebody else changed the record meanwhile",
     u"toinen ohjelma muutti tietuetta samaan aikaan", nullptr},
    {81, ErrorKind::Engine, u"the lock is not held", u"lukitusta ei ole", kCallSupport},
    {82, ErrorKind::Gone, u"the place in the key was lost", u"paikka avaimessa katosi", nullptr},
    {84, ErrorKind::Locked, u"the record is locked", u"tietue on lukittu", kTryLater},
    {85, ErrorKind::Locked, u"the file is locked", u"tiedosto on lukittu", kTryLater},
    {86, ErrorKind::Engine, u"too many files are open", u"liian monta tiedostoa on auki",
     kCallSupport},
    {87, ErrorKind::Engine, u"too many file handles are in use",
     u"liian monta tiedostokahvaa on käytössä", kCallSupport},
    {88, ErrorKind::Locked, u"the file is open in another mode elsewhere",
     u"tiedosto on toisaalla auki toisessa tilassa", kTryLater},
    {91, ErrorKind::NoConnection, u"the server does not answer", u"palvelin ei vastaa",
     kCheckServer},
    {93, ErrorKind::Engine, u"locks of two kinds in one file",
     u"samassa tiedostossa on kahdenlaisia lukituksia", kCallSupport},
    {94, ErrorKind::ReadOnly, u"permission denied", u"käyttöoikeus puuttuu", nullptr},
    {95, ErrorKind::NoConnection, u"the session is no longer valid", u"istunto on päättynyt",
     kCheckServer},
    {96, ErrorKind::NoConnection, u"communication with the server failed",
     u"yhteys palvelimeen ei toimi", kCheckServer},
    {116, ErrorKind::NoConnection, u"the file's server cannot be reached",
     u"tiedoston palvelimeen ei saada yhteyttä", kCheckServer},
    {161, ErrorKind::NoConnection, u"the maximum number of users is reached",
     u"käyttäjien enimmäismäärä on täynnä", u"Sulje muita ohjelmia tai hanki lisää lisenssejä."},
    {162, ErrorKind::NoConnection, u"too many sessions from one machine",
     u"istuntojen enimmäismäärä on täynnä", u"Sulje muita ohjelmia tästä koneesta."},
    {170, ErrorKind::NoConnection, u"the database wants a login with a known user",
     u"tietokanta vaatii tunnetun käyttäjän", kCheckLogin},
    {171, ErrorKind::NoConnection, u"the database refused the password",
     u"tietokanta hylkäsi salasanan", kCheckLogin},
    {172, ErrorKind::NoConnection, u"the engine knows no database of this name",
     u"tietuekanta ei tunne tämän nimistä tietokantaa",
     u"Tarkista, että tietokannan nimi on määritelty palvelimelle yrityksen nimellä."},
    {173, ErrorKind::NoConnection, u"already logged in", u"tietokantaan on jo kirjauduttu",
     kCheckLogin},
    {174, ErrorKind::NoConnection, u"the database wants an explicit login",
     u"tietokanta vaatii erillisen kirjautumisen", kCheckLogin},
    {175, ErrorKind::NoConnection, u"the engine does not take the database name in this form",
     u"tietuekanta ei hyväksy tietokannan nimeä tässä muodossa", kCallSupport},
};

constexpr int kFirstNetworkStatus = 3000;
constexpr int kLastNetworkStatus = 3999;

bool isNetworkStatus(int status) {
    return status >= kFirstNetworkStatus && status <= kLastNetworkStatus;
}

QString withSubject(const QString& text, const QString& what) {
    return what.isEmpty() ? text : text + QStringLiteral(" (%1)").arg(what);
}

}  // namespace

DataError statusError(int status, const QString& table, const QString& what) {
    const auto* found =
        std::find_if(std::begin(kMeanings), std::end(kMeanings),
                     [status](const Meaning& meaning) { return meaning.status == status; });
    if (found != std::end(kMeanings))
        return DataError(found->kind, table, withSubject(QString::fromUtf16(found->english), what),
                         status)
            .inFinnish(withSubject(QString::fromUtf16(found->finnish), what),
                       found->remedy != nullptr ? QString::fromUtf16(found->remedy) : QString());
    if (isNetworkStatus(status))
        return DataError(ErrorKind::NoConnection, table,
                         withSubject(QStringLiteral("no communication with the server"), what),
                         status)
            .inFinnish(withSubject(QStringLiteral("palvelimeen ei saada yhteyttä"), what),
                       QString::fromUtf16(kCheckServer));
    return DataError(ErrorKind::Engine, table,
                     withSubject(QStringLiteral("the record engine refused the operation"), what),
                     status)
        .inFinnish(withSubject(QStringLiteral("tietuekanta hylkäsi toiminnon"), what));
}

bool endsSession(int status) {
    return status == 20 || status == 91 || status == 95 || status == 96 || isNetworkStatus(status);
}

}  // namespace engines::shops
