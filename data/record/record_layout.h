#pragma once

#include <QHash>
#include <QString>
#include <vector>

#include "data/dictionary/field_cache_item.h"
#include "data/dictionary/key_def.h"

namespace data {

/// The fields of one table, their offsets in the record and the record's length.
class RecordLayout {
  public:
    RecordLayout() = default;
    /// `recordLength` 0: up to the end of the last field.
    /// @throws DataError(Damaged) naming table and field if a field reaches beyond the record or
    /// its storage type does not allow its length.
    RecordLayout(QString tableName, std::vector<TFieldCacheItem> fields, int recordLength = 0);

    const QString& tableName() const { return m_tableName; }
    const std::vector<TFieldCacheItem>& fields() const { return m_fields; }
    const TFieldCacheItem& field(int index) const { return m_fields[static_cast<size_t>(index)]; }
    int fieldCount() const { return static_cast<int>(m_fields.size()); }
    int recordLength() const { return m_recordLength; }

    /// Index of a field by name (case-insensitive); -1 if there is none.
    int indexOf(const QString& name) const;

  private:
    QString m_tableName;
    std::vector<TFieldCacheItem> m_fields;
    int m_recordLength = 0;
    QHash<QString, int> m_byName;  // folded name
};

}  // namespace data
