#pragma once

#include <memory>

#include "data/embedded/connection.h"

namespace data::embedded {

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

    std::shared_ptr<Connection> m_connection;
    QString m_sql;
    sqlite3_stmt* m_statement;
    std::vector<SqlColumn> m_columns;
    bool m_atEnd = false;
};

}  // namespace data::embedded
