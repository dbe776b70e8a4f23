#include "engines/embedded/transient_index.h"

#include <algorithm>

#include "data/record/record_codec.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/stored_table.h"

namespace engines::embedded {

namespace {

constexpr int kSearchesBeforeMaking = 2;

}  // namespace

const TransientIndexes::Entries* TransientIndexes::find(StoredTable& table, int field) {
    Field& index = m_fields[{&table, field}];
    const sqlite3_int64 changes = sqlite3_total_changes64(table.connection().db());
    if (index.made && index.changes == changes)
        return &index.entries;
    if (index.made)
        index = {};
    if (++index.searches <= kSearchesBeforeMaking)
        return nullptr;
    const TFieldCacheItem& item = table.layout().field(field);
    StatementLease rows = table.scan({});
    while (rows->step()) {
        const QByteArrayView record = table.checked(rows->blob(1));
        index.entries.emplace_back(readInteger(item, reinterpret_cast<const uchar*>(record.data())),
                                   rows->integer(0));
    }
    std::sort(index.entries.begin(), index.entries.end());
    index.made = true;
    index.changes = changes;
    return &index.entries;
}

}  // namespace engines::embedded
