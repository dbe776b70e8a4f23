#include "search/lookup_cache.h"

#include <utility>

#include "data/record/record_codec.h"

namespace search {

namespace {

QString cacheKey(const data::KeyValues& values) {
    QString key;
    for (const data::Value& value : values)
        key += value.toString() + QChar(u'\x1f');
    return key;
}

}  // namespace

LookupCache::LookupCache(data::Database& database, QString tableName, int key, QStringList fields,
                         int bound)
    : m_database(database),
      m_tableName(std::move(tableName)),
      m_key(key),
      m_fieldNames(std::move(fields)),
      m_rows(bound) {}

const LookupCache::Row* LookupCache::find(const data::KeyValues& values) {
    const QString key = cacheKey(values);
    const Entry* entry = m_rows.object(key);
    if (entry == nullptr) {
        m_rows.insert(key, read(values).release());
        entry = m_rows.object(key);
    }
    return entry != nullptr && entry->found ? &entry->row : nullptr;
}

void LookupCache::open() {
    if (m_file || m_missing)
        return;
    std::unique_ptr<data::TableFile> file;
    try {
        file = m_database.openTable(m_tableName);
    } catch (const data::DataError& error) {
        if (error.kind() != data::ErrorKind::NoSuchTable)
            throw;
        m_missing = true;
        return;
    }
    std::vector<int> fields;
    for (const QString& name : std::as_const(m_fieldNames)) {
        const int index = file->layout().indexOf(name);
        if (index < 0)
            throw data::DataError(data::ErrorKind::NoSuchField, m_tableName, name);
        fields.push_back(index);
    }
    m_fields = std::move(fields);
    m_file = std::move(file);
}

std::unique_ptr<LookupCache::Entry> LookupCache::read(const data::KeyValues& values) {
    auto entry = std::make_unique<Entry>();
    open();
    if (m_missing)
        return entry;
    const std::vector<data::StoredRecord> found =
        m_file->seek(m_key, data::SeekOp::Equal, values, 1);
    if (found.empty())
        return entry;
    entry->found = true;
    const auto* bytes = reinterpret_cast<const uchar*>(found.front().bytes.constData());
    for (const int field : m_fields)
        entry->row.push_back(data::readValue(m_file->layout().field(field), bytes));
    return entry;
}

}  // namespace search
