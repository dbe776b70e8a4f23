#pragma once

#include <memory>

#include "engines/data_names.h"
#include "engines/embedded/connection.h"

namespace engines::embedded {

/// A SQL statement of the embedded engine; returned to the connection's cache when destroyed.
class EmbeddedSqlStatement : public SqlStatement {
  public:
    EmbeddedSqlStatement(std::shared_ptr<Connection> connection, const QString& sql);
    ~EmbeddedSqlStatement() override;
    EmbeddedSqlStatement(const EmbeddedSqlStatement&) = delete;
    EmbeddedSqlStatement& operator=(const EmbeddedSqlStatement&) = delete;

    QStringList parameterNames() const override;
    void bind(const QString& name, const Value& value) override;
    const std::vector<SqlColumn>& columns() const override { return m_columns; }
    bool step() override;
    Value value(int column) const override;
    qint64 execute() override;
    void reset() override;

  private:
    bool stepOnce();
    void bindIndex(qsizetype index, const Value& value);

    std::shared_ptr<Connection> m_connection;
    QString m_sql;
    sqlite3_stmt* m_statement;
    std::vector<SqlColumn> m_columns;
    QStringList m_parameters;  // by index, without the colon
    bool m_distinct = false;   // all names are different
    qsizetype m_nextBind = 0;  // index expected by the next bind()
    bool m_atEnd = false;
};

}  // namespace engines::embedded
