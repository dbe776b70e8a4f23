#pragma once

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

class WatchedFile : public data::TableFile {
  public:
    WatchedFile(std::unique_ptr<data::TableFile> file, Calls& calls)
        : m_file(std::move(file)), m_calls(calls) {}

    const data::RecordLayout& layout() const override { return m_file->layout(); }
    const std::vector<data::KeyDef>& keys() const override { return m_file->keys(); }
    qint64 recordCount() override { return m_file->recordCount(); }
    std::vector<data::StoredRecord> fromEnd(int key, data::Direction to, int max) override {
        read();
        return m_file->fromEnd(key, to, max);
    }
    std::vector<data::StoredRecord> seek(int key, data::SeekOp op, const data::KeyValues& values,
                                         int max) override {
        read();
        return m_file->seek(key, op, values, max);
    }
    std::vector<data::StoredRecord> next(int key, const data::StoredRecord& from,
                                         data::Direction to, int max) override {
        read();
        return m_file->next(key, from, to, max);
    }
    int compare(int key, const QByteArray& record, const data::KeyValues& values) const override {
        return m_file->compare(key, record, values);
    }
    std::optional<data::StoredRecord> get(data::RecordId id) override {
        call("read");
        return m_file->get(id);
    }
    bool lock(data::RecordId id, std::chrono::milliseconds wait) override {
        const bool locked = m_file->lock(id, wait);
        m_calls.locks += locked;
        return locked;
    }
    void unlock(data::RecordId id) override {
        m_file->unlock(id);
        --m_calls.locks;
    }
    data::RecordId insert(QByteArray& bytes) override {
        call("write");
        return m_file->insert(bytes);
    }
    void update(data::RecordId id, const QByteArray& bytes) override {
        call("write");
        m_file->update(id, bytes);
    }
    void remove(data::RecordId id) override {
        call("write");
        m_file->remove(id);
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

    std::unique_ptr<data::TableFile> m_file;
    Calls& m_calls;
};

/// The embedded engine with counted calls.
class WatchedDatabase : public data::Database {
  public:
    WatchedDatabase(data::Database& database, Calls& calls)
        : m_database(database), m_calls(calls) {}

    QString name() const override { return m_database.name(); }
    QStringList tableNames() override { return m_database.tableNames(); }
    std::unique_ptr<data::TableFile> openTable(const QString& tableName) override {
        return std::make_unique<WatchedFile>(m_database.openTable(tableName), m_calls);
    }
    std::unique_ptr<data::SqlStatement> prepare(const QString& sql) override {
        ++m_calls.prepared;
        return m_database.prepare(sql);
    }
    void setLockWait(std::chrono::milliseconds wait) override { m_database.setLockWait(wait); }
    bool beginRun() override { return m_database.beginRun(); }
    void endRun() override { m_database.endRun(); }
    void inTransaction(const std::function<void()>& body) override {
        m_database.inTransaction(body);
    }

  private:
    data::Database& m_database;
    Calls& m_calls;
};

class WatchedTestEngine : public Engine {
  public:
    WatchedDatabase& database() override { return m_watched; }
    data::Database& otherProgram() override { return m_engine.otherProgram(); }

    Calls calls;

  private:
    EmbeddedTestEngine m_engine;
    WatchedDatabase m_watched{m_engine.database(), calls};
};

}  // namespace test
