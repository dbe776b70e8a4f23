#include "engines/embedded/key_check.h"

#include "engines/embedded/connection.h"

namespace engines::embedded {

namespace {

class KeyCheck {
  public:
    KeyCheck(const StoredTable& table, const KeyDef& key,
             const std::function<void(const QString&)>& tell)
        : m_table(table),
          m_key(key),
          m_tell(tell),
          m_stored(quotedName(storedName(table.name()))),
          m_column('k' + QByteArray::number(key.number)),
          m_index(keyIndexName(storedName(table.name()), key.number)) {}

    void run() {
        if (!hasIndex()) {
            tell(QStringLiteral("key %1 has no index of this program").arg(m_key.number));
            countDoubles();
            return;
        }
        const qint64 entries = checkEntries();
        checkRecords();
        // Entries of different rows cannot make up for each other: each was looked up.
        Statement records(db(), "SELECT count(*) FROM " + m_stored + " NOT INDEXED",
                          m_table.name());
        records.step();
        if (entries != records.integer(0))
            tell(QStringLiteral("the index of key %1 has %2 entries for %3 records")
                     .arg(m_key.number)
                     .arg(entries)
                     .arg(records.integer(0)));
    }

  private:
    sqlite3* db() const { return m_table.connection().db(); }
    void tell(const QString& what) { m_tell(m_table.name() + QStringLiteral(": ") + what); }

    bool hasIndex() {
        Statement named(db(), "SELECT sql FROM sqlite_master WHERE type = 'index' AND name = ?1");
        named.bindText(1, m_index);
        return named.step() && named.bytes(0) == keyIndexSql(storedName(m_table.name()),
                                                             m_key.number, m_key.unique);
    }

    void countDoubles() {
        if (!m_key.unique)
            return;
        Statement doubles(db(), "SELECT count(*) FROM (SELECT 1 FROM " + m_stored +
                                    " NOT INDEXED GROUP BY " + m_column + " HAVING count(*) > 1)");
        if (doubles.step() && doubles.integer(0) > 0)
            tellDoubles(doubles.integer(0));
    }

    void tellDoubles(qint64 count) {
        tell(QStringLiteral("%1 values of key %2 are there more than once")
                 .arg(count)
                 .arg(m_key.number));
    }

    /// Walks the index alone. @return the number of its entries.
    qint64 checkEntries() {
        Statement entries(db(), "SELECT id, " + m_column + " FROM " + m_stored + " INDEXED BY " +
                                    quotedName(m_index) + " ORDER BY " + m_column + ", id");
        Statement record(db(),
                         "SELECT " + m_column + " FROM " + m_stored + " NOT INDEXED WHERE id = ?1");
        QByteArray previous;
        qint64 count = 0;
        qint64 doubles = 0;
        bool counted = false;  // the value at hand is among the doubles
        while (entries.step()) {
            const QByteArray image = entries.bytes(1);
            record.bind(1, entries.integer(0));
            if (!record.step())
                tell(QStringLiteral("the index of key %1 has record %2, which is not there")
                         .arg(m_key.number)
                         .arg(entries.integer(0)));
            else if (record.blob(0) != image)
                tell(QStringLiteral("the index of key %1 has record %2 under another value")
                         .arg(m_key.number)
                         .arg(entries.integer(0)));
            record.reset();
            const bool same = count > 0 && image == previous;
            if (same && !counted)
                ++doubles;
            counted = same;
            previous = image;
            ++count;
        }
        if (m_key.unique && doubles > 0)
            tellDoubles(doubles);
        return count;
    }

    void checkRecords() {
        Statement records(
            db(), "SELECT id, " + m_column + " FROM " + m_stored + " NOT INDEXED ORDER BY id");
        Statement entry(db(), "SELECT 1 FROM " + m_stored + " INDEXED BY " + quotedName(m_index) +
                                  " WHERE " + m_column + " = ?1 AND id = ?2");
        while (records.step()) {
            entry.bind(1, records.blob(1));
            entry.bind(2, records.integer(0));
            if (!entry.step())
                tell(QStringLiteral("the index of key %1 lacks record %2 (%3)")
                         .arg(m_key.number)
                         .arg(records.integer(0))
                         .arg(described(records.integer(0))));
            entry.reset();
        }
    }

    QString described(RecordId id) const {
        Statement record(db(), "SELECT data FROM " + m_stored + " NOT INDEXED WHERE id = ?1");
        record.bind(1, id);
        return record.step() && record.blob(0).size() == m_table.layout().recordLength()
                   ? m_table.describe(record.bytes(0))
                   : QStringLiteral("of a wrong length");
    }

    const StoredTable& m_table;
    const KeyDef& m_key;
    const std::function<void(const QString&)>& m_tell;
    QByteArray m_stored;
    QByteArray m_column;
    QString m_index;
};

}  // namespace

void checkKeyIndex(const StoredTable& table, const KeyDef& key,
                   const std::function<void(const QString&)>& tell) {
    KeyCheck(table, key, tell).run();
}

}  // namespace engines::embedded
