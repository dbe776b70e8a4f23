#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "data/table/tb_table.h"
#include "vatchange/rules/log_texts.h"
#include "vatchange/rules/row_matching.h"

namespace vatchange {

/// A price table beside the products, whose rows a step changes.
struct PriceTable {
    QString name;
    QStringList keyColumns;     ///< those of the UPDATE's WHERE; may be shared by several rows
    QStringList amountColumns;  ///< columns that the query reads and the UPDATE writes
    /// The query's conditions on columns outside the key; none if empty.
    std::function<bool(const data::TtbTable&)> selected = {};
    /// Sets the columns with the time of change; none if empty.
    std::function<void(data::TtbTable&)> stamp = {};
};

/// Finds records of a price table by key and changes them.
class KeyRecords {
  public:
    KeyRecords(data::Database& database, PriceTable table);

    struct Found {
        std::vector<KeyRecord> records;
        std::vector<data::RecordId> ids;  ///< of the same records
    };
    /// The records of a key that meet the query's conditions. @throws data::DataError.
    Found find(const data::KeyValues& key);
    /// Relative tolerances of the amount columns. Call after find().
    const Amounts& tolerances() const { return m_tolerances; }

    /// Writes the changes, in the order of the amount columns, if the record still has the key and
    /// the `stored` amounts; amounts that do not change are not written. Returns false if another
    /// program changed or deleted it.
    /// @throws data::DataError(Locked) if another program holds the record for 2000 ms.
    bool change(data::RecordId id, const data::KeyValues& key, const Amounts& stored,
                const std::vector<AmountChange>& changes);

  private:
    void open();
    void chooseIndex();
    bool belongs(const data::KeyValues& key) const;
    Amounts amounts() const;

    data::Database& m_database;
    const PriceTable m_description;
    std::unique_ptr<data::TtbTable> m_table;  // from the first key on
    std::vector<size_t> m_indexColumns;       // key columns that lead the chosen index
    Amounts m_tolerances;
};

}  // namespace vatchange
