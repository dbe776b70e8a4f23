#pragma once

#include <QString>
#include <stdexcept>
#include <string>

namespace data {

/// Kinds of failure that callers distinguish.
enum class ErrorKind {
    NoConnection,  ///< the company's database cannot be reached
    NoSuchTable,   ///< the table is neither in the catalogue nor in a dictionary
    NoSuchField,   ///< no such field, key or parameter
    BadValue,      ///< the field cannot store the value
    DuplicateKey,  ///< a unique key already has the value
    Locked,        ///< another program held the record (or the database) until the wait expired
    Gone,          ///< the record has been deleted
    Syntax,        ///< malformed statement, filter or dictionary source
    Damaged,       ///< bytes contradict the format
    ReadOnly,      ///< the database is write-protected
    DiskFull,      ///< the disk is full
    Io,            ///< any other read or write failure
    Engine         ///< any other engine failure
};

/// The only exception type of the data module. Expected outcomes (not found, end of table) are
/// return values. The parts are kept apart so that windows can show Finnish and command line tools
/// English.
class DataError : public std::runtime_error {
  public:
    DataError(ErrorKind kind, QString table, QString detail, int nativeCode = 0);

    /// An error with a fixed message instead of a composed one; `finnish` if it differs.
    static DataError verbatim(ErrorKind kind, const QString& message,
                              const QString& finnish = QString());

    ErrorKind kind() const { return m_kind; }
    /// Table (or file) concerned; may be empty.
    const QString& table() const { return m_table; }
    /// Field and value, driver message, or position in a statement. In English or the driver's
    /// language; no line breaks.
    const QString& detail() const { return m_detail; }
    /// The engine's own code; 0 if there is none.
    int nativeCode() const { return m_nativeCode; }

    /// A copy with its own Finnish detail and its own advice (whole sentences) instead of the
    /// kind's. An empty text keeps the present one.
    DataError inFinnish(const QString& detail, const QString& remedy = QString()) const;

    /// A copy with a place ("tilaus 7, rivi 2") before its detail, in both languages.
    DataError inPlace(const QString& place) const;

    /// One line in Finnish for windows and logs: what, where, and what to do.
    QString finnish() const;
    /// One line in English for command line tools; what() returns it as UTF-8.
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

/// One line for the user: finnish() of a DataError, otherwise what().
QString errorText(const std::exception& error);

}  // namespace data
