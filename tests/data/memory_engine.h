#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>

#include "data/dictionary/dictionary_source.h"
#include "data/engine.h"

namespace test {

/// What the memory engine's programs share: one table's records, and who holds which.
struct MemoryStore {
    explicit MemoryStore(const data::TableSource& source);

    data::RecordLayout layout;
    std::vector<data::KeyDef> keys;
    std::map<data::RecordId, QByteArray> records;
    data::RecordId lastId = 0;
    std::map<data::RecordId, std::multiset<int>> holders;  // programs that hold a record's lock
    int reads = 0;                                         // calls that fetched records
    /// Called before every read ("read") and write ("write"); throws to let it fail.
    std::function<void(const char*)> onCall;
};

/// An engine of ordinary containers with the behaviour that data/engine.h promises, for tests that
/// count calls or let them fail. It has one table of one name. Programs with different numbers
/// exclude each other's record locks.
class MemoryDatabase : public data::Database {
  public:
    MemoryDatabase(std::shared_ptr<MemoryStore> store, int program)
        : m_store(std::move(store)), m_program(program) {}

    QString name() const override { return QStringLiteral("muisti"); }
    QStringList tableNames() override { return {m_store->layout.tableName()}; }
    std::unique_ptr<data::RecordFile> openTable(const QString& tableName) override;
    std::unique_ptr<data::SqlStatement> prepare(const QString& sql) override;
    void setLockWait(std::chrono::milliseconds) override {}
    bool beginRun() override { return true; }
    void endRun() override {}
    void inTransaction(const std::function<void()>& body) override { body(); }

    /// Makes the statement that prepare() hands out.
    std::function<std::unique_ptr<data::SqlStatement>(const QString&)> makeStatement;

  private:
    std::shared_ptr<MemoryStore> m_store;
    int m_program;
};

}  // namespace test
