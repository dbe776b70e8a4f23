#pragma once

#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>
#include <map>
#include <memory>

#include "data/sql/uni_query.h"
#include "data/table/tb_table.h"
#include "vatchange/rules/log_texts.h"
#include "vatchange/rules/row_matching.h"

namespace vatchange {

/// A price table whose UPDATE identifies rows by columns that are not unique.
struct SharedKeyTable {
    QString name;
    QStringList keyColumns;     ///< those of the UPDATE's WHERE
    QStringList amountColumns;  ///< columns that the query reads and the UPDATE writes
    /// The query's conditions on columns outside the key.
    std::function<bool(const data::TtbTable&)> selected;
};

/// Changes rows that share their key with other rows. The UPDATE would change all of them, so this
/// finds and posts the row's own record. More columns in the WHERE would not help: a changed row
/// may now hold the old values of another.
///
/// One grouped query over the selected products finds the shared keys (1.4 s for 500,000 rows,
/// which take far longer to change); records are read only for these keys.
class SharedKeyRows {
  public:
    /// `rows`: open query of the rows to change, of products that `productCondition` selects;
    /// contains the key columns.
    SharedKeyRows(data::Database& database, SharedKeyTable table, const QString& productCondition,
                  data::TUniQuery& rows);

    /// True if other rows share the key of the query's current row.
    bool holdsCurrentRow() const;

    /// Changes the record that the current row was read from; each record at most once. `changes`:
    /// in the order of the amount columns; unchanged amounts are not written. Returns false if no
    /// record holds the old amounts: another program changed or deleted it since the query.
    /// @throws data::DataError(Locked) if another program holds the record for 2000 ms.
    bool update(const std::vector<AmountChange>& changes);

  private:
    /// The selected records of a key; emptied once all are changed.
    struct Records {
        std::vector<KeyRecord> records;
        std::vector<data::RecordId> ids;  // of the same records
        size_t taken = 0;
    };
    using Columns = std::vector<const data::TQueryField*>;

    Columns keyColumns(data::TUniQuery& query) const;
    void open();
    void chooseIndex();
    Records read(const data::KeyValues& key);
    bool belongs(const data::KeyValues& key) const;
    Amounts amounts() const;
    bool change(data::RecordId id, const data::KeyValues& key, const Amounts& stored,
                const std::vector<AmountChange>& changes);

    data::Database& m_database;
    const SharedKeyTable m_description;
    const Columns m_row;
    QSet<QString> m_keys;
    std::unique_ptr<data::TtbTable> m_table;  // from the first shared key on
    std::vector<size_t> m_indexColumns;       // key columns that lead the chosen index
    Amounts m_tolerances;
    std::map<QString, Records> m_records;
};

}  // namespace vatchange
