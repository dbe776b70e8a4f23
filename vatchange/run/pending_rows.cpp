#include "vatchange/run/pending_rows.h"

namespace vatchange {

KeyRecords::Found PendingRows::unchanged(const data::KeyValues& key) {
    KeyRecords::Found all = m_table.find(key);
    KeyRecords::Found left;
    for (size_t i = 0; i < all.ids.size(); ++i) {
        if (m_changed.contains(all.ids[i]))
            continue;
        left.ids.push_back(all.ids[i]);
        left.records.push_back(std::move(all.records[i]));
    }
    return left;
}

PendingRows::Outcome PendingRows::update(const data::KeyValues& key, const Amounts& listed,
                                         const Convert& convert,
                                         std::vector<AmountChange>& changes) {
    const KeyRecords::Found found = unchanged(key);
    const auto place = recordOfRow(listed, found.records, m_table.tolerances());
    if (!place)
        return Outcome::OtherAmounts;
    changes = convert(listed);
    return write(key, found.ids[*place], found.records[*place].amounts, changes);
}

PendingRows::Outcome PendingRows::updateRecord(const data::KeyValues& key, data::RecordId id,
                                               const Amounts& present, const Convert& convert,
                                               std::vector<AmountChange>& changes) {
    changes = convert(present);
    return write(key, id, present, changes);
}

PendingRows::Outcome PendingRows::write(const data::KeyValues& key, data::RecordId id,
                                        const Amounts& stored,
                                        const std::vector<AmountChange>& changes) {
    if (!m_table.change(id, key, stored, changes))
        return Outcome::Lost;
    m_changed.add(id);
    return Outcome::Changed;
}

}  // namespace vatchange
