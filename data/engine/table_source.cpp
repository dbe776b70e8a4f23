#include "data/engine/table_source.h"

#include <algorithm>

namespace data {

namespace {

/// Adds a field for the bytes after the last field of a record.
void nameRest(const RecordLayout& layout, TableSource& table) {
    const int named = table.span();
    const int rest = layout.recordLength() - named;
    if (rest <= 0)
        return;
    TFieldCacheItem item;
    item.number = static_cast<quint16>(table.fields.size() + 1);
    item.name = QStringLiteral("Loppu");
    while (layout.indexOf(item.name) >= 0)
        item.name += u'_';
    item.kindWord = static_cast<quint32>(Kind::String);
    item.storage = Storage::String;
    item.offset = static_cast<quint16>(named);
    item.size = item.storedLength = item.declaredLength = static_cast<quint16>(rest);
    table.fields.push_back(item);
}

/// Fills gaps in a data file's key numbers: an unused number (its key was dropped, or lies on bytes
/// of no field) gets the segments of the first used key, so that the others keep their numbers.
std::vector<KeyDef> withoutGaps(std::vector<KeyDef> keys) {
    const auto used = std::find_if(keys.begin(), keys.end(),
                                   [](const KeyDef& key) { return !key.segments.empty(); });
    if (used == keys.end())
        return {};
    const std::vector<KeySegment> segments = used->segments;
    for (KeyDef& key : keys) {
        if (key.segments.empty())
            key = {key.number, false, segments};
    }
    return keys;
}

}  // namespace

TableSource tableSourceOf(const TableFile& table) {
    TableSource source;
    source.name = table.layout().tableName();
    source.fields = table.layout().fields();
    source.keyDefs = withoutGaps(table.keys());
    nameRest(table.layout(), source);
    return source;
}

}  // namespace data
