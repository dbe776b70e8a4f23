#pragma once

#include <QSet>
#include <QString>
#include <map>

#include "vatchange/run/key_records.h"

namespace vatchange {

/// Changes rows that share their key with other rows. The UPDATE would change all of them, so this
/// finds and posts the row's own record. More columns in the WHERE would not help: a changed row
/// may now hold the old values of another.
///
/// One grouped query over the selected products finds the shared keys (1.4 s for 500,000 rows,
/// which take far longer to change); records are read only for these keys.
class SharedKeyRows {
  public:
    /// Reads the shared keys among the rows of products that `productCondition` selects.
    SharedKeyRows(data::Database& database, const PriceTable& table,
                  const QString& productCondition);

    /// True if several rows have this key.
    bool holds(const data::KeyValues& key) const;

    /// Changes the record that a row of this key was read from; each record at most once.
    /// `changes`: in the order of the amount columns; unchanged amounts are not written. Returns
    /// false if no record holds the old amounts: another program changed or deleted it since the
    /// query.
    /// @throws data::DataError(Locked) if another program holds the record for 2000 ms.
    bool update(const data::KeyValues& key, const std::vector<AmountChange>& changes);

  private:
    /// The selected records of a key; emptied once all are changed.
    struct Records : KeyRecords::Found {
        size_t taken = 0;
    };

    KeyRecords m_table;
    QSet<QString> m_keys;
    std::map<QString, Records> m_records;
};

}  // namespace vatchange
