#pragma once

#include <functional>

#include "data/journal/id_set.h"
#include "vatchange/run/key_records.h"

namespace vatchange {

/// Changes the rows that a broken-off step left, by their records: a statement could meet rows that
/// the run has changed already. A record that the run has changed is never changed again.
class PendingRows {
  public:
    /// `changed`: the table's records that the run has changed so far.
    PendingRows(data::Database& database, const PriceTable& table, const data::IdSet& changed)
        : m_table(database, table), m_changed(changed) {}

    using Convert = std::function<std::vector<AmountChange>(const Amounts& old)>;
    enum class Outcome {
        Changed,
        OtherAmounts,  ///< no unchanged record of the key has the listed amounts
        Lost           ///< another program changed or deleted the record in between
    };

    /// Changes the record that a listed row of this key and these amounts was read from. `changes`
    /// gets the amounts before and after. @throws data::DataError.
    Outcome update(const data::KeyValues& key, const Amounts& listed, const Convert& convert,
                   std::vector<AmountChange>& changes);

    /// The unchanged records of a key, in their order: for rows that another program has changed
    /// since the list was made.
    KeyRecords::Found unchanged(const data::KeyValues& key);
    /// Changes one of them from the amounts that it holds.
    Outcome updateRecord(const data::KeyValues& key, data::RecordId id, const Amounts& present,
                         const Convert& convert, std::vector<AmountChange>& changes);

  private:
    Outcome write(const data::KeyValues& key, data::RecordId id, const Amounts& stored,
                  const std::vector<AmountChange>& changes);

    KeyRecords m_table;
    data::IdSet m_changed;
};

}  // namespace vatchange
