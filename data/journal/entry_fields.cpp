#include "data/journal/entry_fields.h"

#include <algorithm>

#include "data/journal/entry_codec.h"
#include "data/record/record_codec.h"

namespace data {

namespace {

void apply(const JournalEntry& entry, QByteArray ByteChange::*side, QByteArray& record) {
    for (const ByteChange& change : entry.changes) {
        const QByteArray& bytes = change.*side;
        if (change.offset + bytes.size() > record.size())
            throw DataError(ErrorKind::Damaged, QStringLiteral("run journal"),
                            QStringLiteral("entry %1 is longer than its record").arg(entry.seq))
                .inFinnish(
                    QStringLiteral("ajopäiväkirjan merkintä %1 on vioittunut").arg(entry.seq));
        record.replace(change.offset, bytes.size(), bytes);
    }
}

bool touches(const JournalEntry& entry, const TFieldCacheItem& field) {
    return std::any_of(entry.changes.begin(), entry.changes.end(), [&](const ByteChange& change) {
        const auto length = std::max(change.before.size(), change.after.size());
        return change.offset < field.offset + field.storedLength &&
               field.offset < change.offset + length;
    });
}

QString textOf(const TFieldCacheItem& field, const QByteArray& record) {
    return valueToText(field, readValue(field, reinterpret_cast<const uchar*>(record.constData())));
}

}  // namespace

bool describes(const JournalTable& table, const RecordLayout& layout,
               const std::vector<KeyDef>& keys) {
    return table.recordLength == layout.recordLength() &&
           table.fingerprint == layoutFingerprint(layout, keys);
}

std::vector<FieldChange> changedFields(const RecordLayout& layout, const JournalEntry& entry) {
    QByteArray empty(layout.recordLength(), '\0');
    for (const TFieldCacheItem& field : layout.fields())
        clearField(field, reinterpret_cast<uchar*>(empty.data()));
    QByteArray before(layout.recordLength(), '\0');
    QByteArray after = before;
    applyBefore(entry, before);
    applyAfter(entry, after);
    std::vector<FieldChange> changes;
    for (int i = 0; i < layout.fieldCount(); ++i) {
        const TFieldCacheItem& field = layout.field(i);
        if (!touches(entry, field))
            continue;
        FieldChange change{i, {}, {}};
        if (entry.operation != Operation::Insert)
            change.before = textOf(field, before);
        if (entry.operation != Operation::Delete)
            change.after = textOf(field, after);
        if (entry.operation == Operation::Update
                ? change.before != change.after
                : change.before + change.after != textOf(field, empty))
            changes.push_back(std::move(change));
    }
    return changes;
}

QString keyText(const RecordLayout& layout, const std::vector<KeyDef>& keys,
                const JournalEntry& entry) {
    if (keys.empty())
        return QString::number(entry.record);
    QByteArray record(layout.recordLength(), '\0');
    qsizetype at = 0;
    QStringList parts;
    for (const KeySegment& segment : keys.front().segments) {
        const TFieldCacheItem& field = layout.field(segment.fieldIndex);
        const QByteArray bytes = entry.key.mid(at, field.storedLength);
        record.replace(field.offset, bytes.size(), bytes);
        at += field.storedLength;
        parts += textOf(field, record);
    }
    return parts.join(u' ');
}

void applyBefore(const JournalEntry& entry, QByteArray& record) {
    apply(entry, &ByteChange::before, record);
}

void applyAfter(const JournalEntry& entry, QByteArray& record) {
    apply(entry, &ByteChange::after, record);
}

}  // namespace data
