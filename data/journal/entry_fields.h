#pragma once

#include <QString>
#include <vector>

#include "data/engine/run_journal.h"
#include "data/record/record_layout.h"

namespace data {

// Journal entries in terms of their table's fields. The layout must be the one that the entry was
// written with: see describes().

/// Whether the table still has the layout of the run that changed it.
bool describes(const JournalTable& table, const RecordLayout& layout,
               const std::vector<KeyDef>& keys);

/// A field that differs, with its texts before and after (valueToText). For an insert `before` is
/// empty, for a delete `after`; then only non-empty fields are listed.
struct FieldChange {
    int field = 0;  ///< index in the layout
    QString before;
    QString after;
};
std::vector<FieldChange> changedFields(const RecordLayout& layout, const JournalEntry& entry);

/// The values of key 0's fields, joined by a blank; the record's id if the table has no key.
QString keyText(const RecordLayout& layout, const std::vector<KeyDef>& keys,
                const JournalEntry& entry);

/// Writes the change's old (new) bytes into a record.
void applyBefore(const JournalEntry& entry, QByteArray& record);
void applyAfter(const JournalEntry& entry, QByteArray& record);

}  // namespace data
