#pragma once

#include <QString>
#include <vector>

#include "data/engine/run_journal.h"
#include "data/record/record_layout.h"

namespace data {

// What a journal entry says in terms of its table's fields. The layout must be the one that the
// entry was written with: see describes().

/// Whether the table is still laid out as it was when the run changed it.
bool describes(const JournalTable& table, const RecordLayout& layout,
               const std::vector<KeyDef>& keys);

/// A field with other values before and after, as texts (valueToText). Of an insert `before` is
/// empty, of a delete `after`, and only fields that are not empty are listed.
struct FieldChange {
    int field = 0;  ///< index in the layout
    QString before;
    QString after;
};
std::vector<FieldChange> changedFields(const RecordLayout& layout, const JournalEntry& entry);

/// The values of key 0's fields, joined by a blank; the record's id if the table has no key.
QString keyText(const RecordLayout& layout, const std::vector<KeyDef>& keys,
                const JournalEntry& entry);

/// Puts the bytes from before (after) the change into a record.
void applyBefore(const JournalEntry& entry, QByteArray& record);
void applyAfter(const JournalEntry& entry, QByteArray& record);

}  // namespace data
