#pragma once

#include <memory>

#include "engines/data_names.h"
#include "engines/embedded/connection.h"

namespace engines::embedded {

/// A SQL statement behind the engines' common interface; returns to the connection's cache.
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
    bool m_distinct = false;   // no two of them are the same name
    qsizetype m_nextBind = 0;  // where the next parameter of the text is expected
    bool m_atEnd = false;
};

}  // namespace engines::embedded
