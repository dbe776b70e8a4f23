#include "data/error.h"

#include <array>
#include <utility>

namespace data {

namespace {

struct Wording {
    ErrorKind kind;
    const char16_t* finnish;  // what went wrong
    const char16_t* remedy;   // what the user can do about it, in Finnish
    const char16_t* english;
};

constexpr std::array<Wording, 13> kWordings{{
    {ErrorKind::NoConnection, u"Yrityksen tietokantaan ei saada yhteyttä",
     u"Tarkista yrityksen kansio ja verkkoyhteys.", u"the company's database cannot be reached"},
    {ErrorKind::NoSuchTable, u"Taulua ei ole tietokannassa",
     u"Tarkista, että yrityksen tietokanta on ajan tasalla.", u"no such table"},
    {ErrorKind::NoSuchField, u"Kenttää ei ole taulussa",
     u"Tarkista, että yrityksen tietokanta on ajan tasalla.", u"no such field"},
    {ErrorKind::BadValue, u"Arvo ei sovi kenttään", u"Korjaa arvo ja yritä uudelleen.",
     u"value does not fit its field"},
    {ErrorKind::DuplicateKey, u"Saman avaimen tietue on jo olemassa",
     u"Muuta avainta ja yritä uudelleen.", u"duplicate key"},
    {ErrorKind::Locked, u"Tietue on toisen ohjelman käytössä",
     u"Yritä uudelleen, kun toinen ohjelma on vapauttanut sen.", u"locked by another program"},
    {ErrorKind::Gone, u"Tietue on sillä välin poistettu", u"Hae tiedot uudelleen.",
     u"the record was deleted meanwhile"},
    {ErrorKind::Syntax, u"Lausetta ei voida tulkita", u"Korjaa lause osoitetusta kohdasta.",
     u"syntax error"},
    {ErrorKind::Damaged, u"Tiedot ovat vioittuneet", u"Palauta varmuuskopio tai ota yhteys tukeen.",
     u"damaged data"},
    {ErrorKind::ReadOnly, u"Tietokantaan ei voi kirjoittaa",
     u"Tarkista kansion ja tiedostojen käyttöoikeudet.", u"the database cannot be written"},
    {ErrorKind::DiskFull, u"Levy on täynnä", u"Vapauta levytilaa ja yritä uudelleen.",
     u"the disk is full"},
    {ErrorKind::Io, u"Luku tai kirjoitus epäonnistui", u"Tarkista levy ja verkkoyhteys.",
     u"read or write failed"},
    {ErrorKind::Engine, u"Tietokanta hylkäsi toiminnon", u"Yritä uudelleen tai ota yhteys tukeen.",
     u"the database refused the operation"},
}};

const Wording& wordingOf(ErrorKind kind) {
    for (const Wording& wording : kWordings)
        if (wording.kind == kind)
            return wording;
    return kWordings.back();
}

// Driver messages may contain line breaks; blanks inside values are kept.
QString oneLine(const QString& text) {
    QString line = text;
    line.replace(QLatin1String("\r\n"), QLatin1String(" "));
    for (QChar& c : line)
        if (c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line ||
            c.category() == QChar::Separator_Paragraph)
            c = QLatin1Char(' ');
    return line.trimmed();
}

// "what: table: detail (code n)"; empty parts are left out.
QString compose(const char16_t* what, const QString& table, const QString& detail, int code,
                const QString& codeWord) {
    QString line = QString::fromUtf16(what);
    if (!table.isEmpty())
        line += QStringLiteral(": ") + table;
    if (!detail.isEmpty())
        line += QStringLiteral(": ") + detail;
    if (code != 0)
        line += QStringLiteral(" (%1 %2)").arg(codeWord).arg(code);
    return line;
}

QString englishLine(ErrorKind kind, const QString& table, const QString& detail, int code) {
    return compose(wordingOf(kind).english, oneLine(table), oneLine(detail), code,
                   QStringLiteral("code"));
}

}  // namespace

DataError::DataError(ErrorKind kind, QString table, QString detail, int nativeCode)
    : std::runtime_error(englishLine(kind, table, detail, nativeCode).toStdString()),
      m_kind(kind),
      m_table(std::move(table)),
      m_detail(std::move(detail)),
      m_nativeCode(nativeCode) {}

DataError::DataError(const std::string& what, ErrorKind kind, const QString& message)
    : std::runtime_error(what),
      m_kind(kind),
      m_detail(message),
      m_nativeCode(0),
      m_verbatim(true) {}

DataError DataError::verbatim(ErrorKind kind, const QString& message, const QString& finnish) {
    DataError error(message.toStdString(), kind, message);
    error.m_finnishDetail = finnish;
    return error;
}

DataError DataError::inFinnish(const QString& detail, const QString& remedy) const {
    DataError error(*this);
    if (!detail.isEmpty())
        error.m_finnishDetail = detail;
    if (!remedy.isEmpty())
        error.m_finnishRemedy = remedy;
    return error;
}

DataError DataError::inPlace(const QString& place) const {
    const auto placed = [&place](const QString& detail) {
        return detail.isEmpty() ? place : place + QStringLiteral(": ") + detail;
    };
    const DataError error(m_kind, m_table, placed(m_detail), m_nativeCode);
    return error.inFinnish(placed(m_finnishDetail.isEmpty() ? m_detail : m_finnishDetail),
                           m_finnishRemedy);
}

QString DataError::finnish() const {
    if (m_verbatim)
        return m_finnishDetail.isEmpty() ? m_detail : m_finnishDetail;
    const Wording& wording = wordingOf(m_kind);
    QString line = compose(wording.finnish, oneLine(m_table),
                           oneLine(m_finnishDetail.isEmpty() ? m_detail : m_finnishDetail),
                           m_nativeCode, QStringLiteral("virhekoodi"));
    if (!line.endsWith(QLatin1Char('.')))
        line += QLatin1Char('.');
    return line + QLatin1Char(' ') +
           (m_finnishRemedy.isEmpty() ? QString::fromUtf16(wording.remedy)
                                      : oneLine(m_finnishRemedy));
}

QString DataError::english() const {
    if (m_verbatim)
        return m_detail;
    return englishLine(m_kind, m_table, m_detail, m_nativeCode);
}

QString errorText(const std::exception& error) {
    if (const auto* dataError = dynamic_cast<const DataError*>(&error))
        return dataError->finnish();
    return QString::fromUtf8(error.what());
}

}  // namespace data
