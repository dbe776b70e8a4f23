#include "engines/shops/separate_journal.h"

// Tables and statements that report their writes to the run journal.

namespace engines::shops {

namespace {

class JournaledTable : public TableFile {
  public:
    JournaledTable(std::unique_ptr<TableFile> file, SeparateJournal& journal)
        : m_file(std::move(file)), m_journal(journal) {}

    const RecordLayout& layout() const override { return m_file->layout(); }
    const std::vector<KeyDef>& keys() const override { return m_file->keys(); }
    qint64 recordCount() override { return m_file->recordCount(); }
    std::vector<StoredRecord> fromEnd(int key, Direction direction, int max) override {
        return m_file->fromEnd(key, direction, max);
    }
    std::vector<StoredRecord> seek(int key, SeekOp op, const KeyValues& values, int max) override {
        return m_file->seek(key, op, values, max);
    }
    std::vector<StoredRecord> next(int key, const StoredRecord& from, Direction direction,
                                   int max) override {
        return m_file->next(key, from, direction, max);
    }
    std::optional<StoredRecord> skip(int key, const std::optional<StoredRecord>& from,
                                     Direction direction, qint64 count) override {
        return m_file->skip(key, from, direction, count);
    }
    qint64 countBetween(int key, const std::optional<StoredRecord>& from,
                        const StoredRecord& to) override {
        return m_file->countBetween(key, from, to);
    }
    std::optional<StoredRecord> visit(int key, const std::optional<StoredRecord>& from,
                                      Direction direction, int max, const Visitor& see) override {
        return m_file->visit(key, from, direction, max, see);
    }
    std::optional<RecordId> visitStored(std::optional<RecordId> after, int max,
                                        const Visitor& see) override {
        return m_file->visitStored(after, max, see);
    }
    std::optional<StoredRecord> visitIds(int key, const std::optional<StoredRecord>& from, int max,
                                         const std::function<void(RecordId)>& see) override {
        return m_file->visitIds(key, from, max, see);
    }
    int compare(int key, const QByteArray& record, const KeyValues& values) const override {
        return m_file->compare(key, record, values);
    }
    std::optional<StoredRecord> get(RecordId id) override { return m_file->get(id); }
    bool lock(RecordId id, std::chrono::milliseconds wait) override {
        return m_file->lock(id, wait);
    }
    void unlock(RecordId id) override { m_file->unlock(id); }

    RecordId insert(QByteArray& bytes) override {
        if (m_journal.recording() == 0)
            return m_file->insert(bytes);
        RecordId id = 0;
        m_journal.insertRecord(layout().tableName(), bytes, [&] { id = m_file->insert(bytes); });
        return id;
    }
    void update(RecordId id, const QByteArray& bytes) override {
        change(id, [&] { m_file->update(id, bytes); });
    }
    void remove(RecordId id) override {
        change(id, [&] { m_file->remove(id); });
    }

  private:
    void change(RecordId id, const std::function<void()>& send) {
        if (m_journal.recording() == 0)
            send();
        else
            m_journal.changeRecord(layout().tableName(), id, send);
    }

    std::unique_ptr<TableFile> m_file;
    SeparateJournal& m_journal;
};

class JournaledStatement : public SqlStatement {
  public:
    JournaledStatement(std::unique_ptr<SqlStatement> statement, QString sql,
                       SeparateJournal& journal, Database& database)
        : m_statement(std::move(statement)),
          m_sql(std::move(sql)),
          m_journal(journal),
          m_database(database) {}

    QStringList parameterNames() const override { return m_statement->parameterNames(); }
    void bind(const QString& name, const Value& value) override {
        m_statement->bind(name, value);
        if (writes())
            m_values[name.toLower()] = value;
    }
    const std::vector<SqlColumn>& columns() const override { return m_statement->columns(); }
    bool step() override {
        if (!writes())
            return m_statement->step();
        execute();
        return false;
    }
    Value value(int column) const override { return m_statement->value(column); }
    qint64 execute() override {
        if (!writes() || m_journal.recording() == 0)
            return m_statement->execute();
        if (!m_target)
            m_target = writeTargetOf(m_sql);
        qint64 changed = 0;
        m_journal.write(*m_target, m_values, m_database, [&] { changed = m_statement->execute(); });
        return changed;
    }
    void reset() override { m_statement->reset(); }

  private:
    bool writes() const { return m_statement->columns().empty(); }

    std::unique_ptr<SqlStatement> m_statement;
    QString m_sql;
    SeparateJournal& m_journal;
    Database& m_database;
    std::map<QString, Value> m_values;  // by lower-case name
    std::optional<WriteTarget> m_target;
};

}  // namespace

std::unique_ptr<TableFile> journaled(std::unique_ptr<TableFile> file, SeparateJournal& journal) {
    return std::make_unique<JournaledTable>(std::move(file), journal);
}

std::unique_ptr<SqlStatement> journaled(std::unique_ptr<SqlStatement> statement, const QString& sql,
                                        SeparateJournal& journal, Database& database) {
    return std::make_unique<JournaledStatement>(std::move(statement), sql, journal, database);
}

}  // namespace engines::shops
