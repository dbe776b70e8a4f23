#pragma once

#include <QString>
#include <stdexcept>
#include <string>

namespace data {

/// What went wrong, as far as a caller can act on it.
enum class ErrorKind {
    NoConnection,  ///< the company's database cannot be reached
    NoSuchTable,   ///< the table is neither in the catalogue nor in a dictionary
    NoSuchField,   ///< a field, key or parameter name that the table or statement lacks
    BadValue,      ///< a value that its field cannot hold
    DuplicateKey,  ///< a unique key has the value already
    Locked,        ///< somebody else holds the record (or the database) and the wait is over
    Gone,          ///< the record was deleted meanwhile
    Syntax,        ///< a statement, filter or dictionary source that cannot be read
    Damaged,       ///< bytes that are not what the format says
    ReadOnly,      ///< the database may not be written
    DiskFull,      ///< no room on the disk
    Io,            ///< any other failure of reading or writing
    Engine         ///< anything else that the engine refuses
};

/// The one error type of the data module: expected outcomes (not found, end of table) are return
/// values, everything else throws this. Kept as parts, so that a window can say it in Finnish and
/// a command line in English.
class DataError : public std::runtime_error {
  public:
    DataError(ErrorKind kind, QString table, QString detail, int nativeCode = 0);

    /// An error that is told by this message alone, word for word, in either language.
    static DataError verbatim(ErrorKind kind, const QString& message);

    ErrorKind kind() const { return m_kind; }
    /// Table (or file) concerned; empty when none is.
    const QString& table() const { return m_table; }
    /// What exactly: the field and value, the driver's text, the place in a statement. English or
    /// the driver's own language; no line breaks.
    const QString& detail() const { return m_detail; }
    /// The engine's own code; 0 when it has none.
    int nativeCode() const { return m_nativeCode; }

    /// The same error with texts of its own for finnish(): the detail and what to do about it
    /// (whole sentences) in place of the kind's usual advice. An empty text leaves what there was.
    DataError inFinnish(const QString& detail, const QString& remedy = QString()) const;

    /// The same error with a place ("tilaus 7, rivi 2") before its detail, in both languages.
    DataError inPlace(const QString& place) const;

    /// One line in Finnish: what, where, and what to do about it. For windows and the logs.
    QString finnish() const;
    /// One line in English, for the command line tools; also what what() holds as UTF-8.
    QString english() const;

  private:
    DataError(const std::string& what, ErrorKind kind, const QString& message);

    ErrorKind m_kind;
    QString m_table;
    QString m_detail;
    int m_nativeCode;
    QString m_finnishDetail;
    QString m_finnishRemedy;
    bool m_verbatim = false;
};

/// One line for the user about an exception: the Finnish text of a data error.
QString errorText(const std::exception& error);

}  // namespace data
