#pragma once

#include <QCache>
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

#include "data/engine/engine.h"

namespace search {

/// Selected fields of another table's records, read by key on first use and cached (least recently
/// used first out). A missing table counts as empty.
class LookupCache {
  public:
    /// Lookups kept, including those that found nothing.
    static constexpr int kBound = 4096;

    using Row = std::vector<data::Value>;

    LookupCache(data::Database& database, QString tableName, int key, QStringList fields,
                int bound = kBound);

    /// The fields' values, in the given order, of the first record whose leading key fields equal
    /// the values; nullptr if there is none. Valid until the next call.
    /// @throws data::DataError if the table cannot be read or lacks a field.
    const Row* find(const data::KeyValues& values);

    /// Clears the cache.
    void clear() { m_rows.clear(); }
    qsizetype size() const { return m_rows.size(); }

  private:
    struct Entry {
        bool found = false;
        Row row;
    };
    void open();
    std::unique_ptr<Entry> read(const data::KeyValues& values);

    data::Database& m_database;
    QString m_tableName;
    int m_key;
    QStringList m_fieldNames;
    std::vector<int> m_fields;  // indexes into the layout
    std::unique_ptr<data::TableFile> m_file;
    bool m_missing = false;  // the company has no such table
    QCache<QString, Entry> m_rows;
};

}  // namespace search
