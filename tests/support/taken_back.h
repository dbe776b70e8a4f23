#pragma once

#include <map>

#include "data/journal/entry_fields.h"

namespace test {

/// Records by table and address, with the changes of a run taken back from the last to the first.
/// Tables without records are left out.
inline std::map<QString, std::map<data::RecordId, QByteArray>> takenBack(
    data::RunJournal& journal, qint64 run,
    std::map<QString, std::map<data::RecordId, QByteArray>> tables) {
    const std::vector<data::JournalTable> known = journal.tables(run);
    journal.visit(run, data::Direction::Backward, [&](const data::JournalEntry& entry) {
        if (entry.isMark)
            return true;
        const data::JournalTable& table = known.at(static_cast<size_t>(entry.table));
        auto& records = tables[table.name];
        const QByteArray nothing(table.recordLength, '\0');
        if (entry.operation == data::Operation::Insert)
            records.erase(entry.record);
        else
            data::applyBefore(entry, records.try_emplace(entry.record, nothing).first->second);
        return true;
    });
    std::erase_if(tables, [](const auto& table) { return table.second.empty(); });
    return tables;
}

}  // namespace test
