#pragma once

#include "engines/embedded/company_file.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/sql_statement.h"
#include "engines/embedded/table_file.h"
#include "tests/data/table_fixture.h"

namespace test {

/// Counts calls to an engine's records, and makes them fail.
struct Calls {
    int reads = 0;     ///< that fetched records by key
    int locks = 0;     ///< held
    int prepared = 0;  ///< statements
    /// Called before every read ("read") and write ("write"); may throw.
    std::function<void(const char*)> before;
};

class WatchedFile : public engines::embedded::EmbeddedTableFile {
    using Base = engines::embedded::EmbeddedTableFile;
    using Records = std::vector<data::StoredRecord>;

  public:
    WatchedFile(const std::shared_ptr<engines::embedded::Connection>& connection,
                const QString& table, Calls& calls)
        : Base(connection, connection->table(table)), m_calls(calls) {}

    Records fromEnd(int key, data::Direction to, int max) override {
        return read(), Base::fromEnd(key, to, max);
    }
    Records seek(int key, data::SeekOp op, const data::KeyValues& values, int max) override {
        return read(), Base::seek(key, op, values, max);
    }
    Records next(int key, const data::StoredRecord& from, data::Direction to, int max) override {
        return read(), Base::next(key, from, to, max);
    }
    std::optional<data::StoredRecord> get(data::RecordId id) override {
        return call("read"), Base::get(id);
    }
    bool lock(data::RecordId id, std::chrono::milliseconds wait) override {
        const bool locked = Base::lock(id, wait);
        m_calls.locks += locked;
        return locked;
    }
    void unlock(data::RecordId id) override {
        Base::unlock(id);
        --m_calls.locks;
    }
    data::RecordId insert(QByteArray& bytes) override { return call("write"), Base::insert(bytes); }
    void update(data::RecordId id, const QByteArray& bytes) override {
        call("write");
        Base::update(id, bytes);
    }

  private:
    void call(const char* what) {
        if (m_calls.before)
            m_calls.before(what);
    }
    void read() {
        ++m_calls.reads;
        call("read");
    }

    Calls& m_calls;
};

/// The embedded engine with counted calls.
class WatchedTestEngine : public EmbeddedTestEngine, private data::Database {
  public:
    data::Database& database() override { return *this; }

    Calls calls;

  private:
    QString name() const override { return QStringLiteral("watched"); }
    QStringList tableNames() override { return {}; }
    std::unique_ptr<data::TableFile> openTable(const QString& tableName) override {
        return std::make_unique<WatchedFile>(m_connection, tableName, calls);
    }
    std::unique_ptr<data::SqlStatement> prepare(const QString& sql) override {
        ++calls.prepared;
        return std::make_unique<engines::embedded::EmbeddedSqlStatement>(m_connection, sql);
    }
    void setLockWait(std::chrono::milliseconds) override {}
    bool beginRun() override { return true; }
    void endRun() override {}
    void inTransaction(const std::function<void()>& body) override { body(); }

    std::shared_ptr<engines::embedded::Connection> m_connection =
        std::make_shared<engines::embedded::Connection>(engines::embedded::companyFile(folder()));
};

}  // namespace test
