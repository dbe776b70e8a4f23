#pragma once

#include <list>
#include <memory>
#include <vector>

#include "engines/data_names.h"
#include "engines/shops/odbc_session.h"

namespace engines::shops {

/// How a result column is fetched.
enum class ColumnKind {
    Whole,
    Whole16,
    Single,
    Real,
    Text,
    TaggedText,
    PaddedText,
    Bytes,
    Date,
    Time,
    Timestamp
};

/// `type` is the driver's SQL type; `scale` its decimals.
ColumnKind columnKind(SQLSMALLINT type, SQLSMALLINT scale);

/// A prepared statement of one session: the driver's handle and its bound buffers. All functions
/// except accessors call the driver and run in the session's guarded jobs; a failure throws
/// DataError.
class PreparedOdbc {
  public:
    PreparedOdbc(std::shared_ptr<OdbcHandles> handles, QString sql, RewrittenSql rewritten);
    ~PreparedOdbc();
    PreparedOdbc(const PreparedOdbc&) = delete;
    PreparedOdbc& operator=(const PreparedOdbc&) = delete;

    void prepare(SQLULEN timeLimitSeconds);
    /// Runs the statement. @return the rows affected; 0 if the driver gives no count.
    qint64 execute(const std::vector<Value>& values);
    /// Fetches the next rows into cells(), at most kBatchRows; closes the result at its end.
    void fetch();
    void closeResult();

    const OdbcHandles& handles() const { return *m_handles; }
    const QString& sql() const { return m_sql; }
    const RewrittenSql& rewritten() const { return m_rewritten; }
    const std::vector<SqlColumn>& columns() const { return m_columns; }
    bool isResultOpen() const { return m_isResultOpen; }
    /// Cells of the last batch, row after row.
    const std::vector<Value>& cells() const { return m_cells; }

    static constexpr int kBatchRows = 256;

  private:
    struct Parameter {
        SQLSMALLINT cType = 0;  // as bound; 0: not yet
        SQLLEN indicator = 0;
        qint64 whole = 0;
        double real = 0;
        QByteArray bytes;
        qsizetype capacity = 0;              // bound size in bytes
        SQL_TIMESTAMP_STRUCT at{};           // or the shorter ones of a date or a time
        ColumnKind kind = ColumnKind::Text;  // of the database; only dates and times matter
    };
    void check(SQLRETURN code);
    void send(const QString& sql);
    void describe();
    void tagResults();
    SQLSMALLINT wholeType() const;
    void bind(size_t index, const Value& value);
    void bindBytes(size_t index, const QByteArray& bytes, bool isBinary);
    void bindAt(size_t index, const Value& value);
    void describeParameters();
    void bindBuffer(size_t index, SQLSMALLINT cType, SQLSMALLINT sqlType, SQLULEN size,
                    SQLPOINTER buffer, SQLLEN bufferSize);
    void setAttribute(SQLINTEGER attribute, SQLULEN value);
    Value cell(SQLUSMALLINT column, ColumnKind kind);
    Value textCell(SQLUSMALLINT column, ColumnKind kind);
    template <typename Buffer>
    bool get(SQLUSMALLINT column, SQLSMALLINT cType, Buffer& buffer);

    std::shared_ptr<OdbcHandles> m_handles;
    QString m_sql;
    RewrittenSql m_rewritten;
    SQLHSTMT m_statement = SQL_NULL_HSTMT;
    std::vector<SqlColumn> m_columns;
    std::vector<ColumnKind> m_kinds;
    std::vector<Parameter> m_parameters;  // bound by address: never resized
    std::vector<Value> m_cells;
    bool m_isResultOpen = false;
};

}  // namespace engines::shops
