#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

#include "data/engine/engine.h"

namespace data {

/// The lines of a statement; joined by line breaks.
class SqlText {
  public:
    void clear() {
        m_lines.clear();
        ++m_revision;
    }
    void add(const QString& line) {
        m_lines.append(line);
        ++m_revision;
    }
    void setText(const QString& text) {
        m_lines = {text};
        ++m_revision;
    }
    QString text() const { return m_lines.join(QLatin1Char('\n')); }
    bool isEmpty() const { return m_lines.isEmpty(); }
    /// Incremented by every change.
    quint64 revision() const { return m_revision; }

  private:
    QStringList m_lines;
    quint64 m_revision = 0;
};

/// A named parameter of a statement.
class TParam {
  public:
    explicit TParam(QString name) : m_name(std::move(name)) {}
    const QString& name() const { return m_name; }
    void setInteger(qint64 v) { m_value = v; }
    void setFloat(double v) { m_value = v; }
    void setString(const QString& v) { m_value = v; }
    void setDate(const QDate& v);  ///< quoted 'yyyy-mm-dd'; an invalid date is the empty text
    void setNull() { m_value = Value(); }
    void setValue(const Value& v);  ///< dates and times as texts, booleans as 1 and 0
    const Value& value() const { return m_value; }

  private:
    QString m_name;
    Value m_value;
};

class ResultSet;

/// A column of an open query, with the accessors of TField. Valid until close().
class TQueryField {
  public:
    const QString& fieldName() const { return m_name; }
    qint64 asInteger() const;
    double asFloat() const;
    QString asString() const;
    bool asBoolean() const;
    QDate asDate() const;  ///< from yyyy-mm-dd or yyyymmdd; invalid when empty
    Value value() const;
    bool isNull() const { return !value().isValid(); }

  private:
    friend class TUniQuery;
    QString m_name;
    int m_column = 0;
    const ResultSet* m_result = nullptr;
};

/// A SQL query: text in lines, named parameters (":name", case-insensitive), and an open result or
/// an executed statement. The result is fixed when opened: the record count is known, and later
/// writes do not change it. Large results are kept in a temporary file. All failures throw
/// DataError.
class TUniQuery {
  public:
    explicit TUniQuery(Database* database = nullptr);
    ~TUniQuery();
    TUniQuery(const TUniQuery&) = delete;
    TUniQuery& operator=(const TUniQuery&) = delete;

    void setConnection(Database* database);
    /// Logs statements and parameter values to the debug output.
    void setDebug(bool on) { m_debug = on; }
    /// The same for every query of the process.
    static void setDebugOfAll(bool on) { s_debugOfAll = on; }

    SqlText& sql() { return m_sql; }

    /// A parameter of the current text. @throws DataError(NoSuchField) if there is none.
    TParam& paramByName(const QString& name);
    /// nullptr if the text has no such parameter.
    TParam* findParam(const QString& name);

    void open();
    void close();
    bool isOpen() const { return m_result != nullptr; }
    qint64 recordCount() const;

    void first();
    void next();
    bool eof() const;
    TQueryField& fieldByName(
        const QString& name);  ///< case-insensitive; @throws DataError(NoSuchField)
    TQueryField* findField(const QString& name);
    QStringList fieldNames() const;

    /// Runs a statement that returns no rows. @return the number of rows affected.
    qint64 execSql();

  private:
    void requireOpen() const;
    void syncParameters();
    void prepareAndBind();

    Database* m_database;
    SqlText m_sql;
    QString m_parsedText;
    quint64 m_parsedRevision = 0;
    std::vector<std::unique_ptr<TParam>> m_params;
    std::unique_ptr<SqlStatement> m_statement;
    QString m_statementText;
    std::unique_ptr<ResultSet> m_result;
    std::vector<std::unique_ptr<TQueryField>> m_fields;
    bool m_eof = true;
    bool m_debug = false;
    inline static bool s_debugOfAll = false;
};

/// The parameters of a statement, in order of first appearance: a colon and a name outside quoted
/// texts, quoted names and comments.
QStringList parameterNames(const QString& sql);

}  // namespace data
