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

/// A price table whose UPDATE names its row by columns that other rows may share.
struct SharedKeyTable {
    QString name;
    QStringList keyColumns;     ///< those of the UPDATE's WHERE
    QStringList amountColumns;  ///< all that the query reads new amounts from and the UPDATE writes
    /// The query's conditions on the record itself that the key columns do not tell.
    std::function<bool(const data::TtbTable&)> selected;
};

/// Changes rows whose key other rows share: there the UPDATE would reach all of them, so the row's
/// own record is found and posted. Further columns in the WHERE would not do, as a row already
/// changed may hold by now what another one held before.
///
/// Which keys are shared is asked once, in one grouped query over the rows of the selected products
/// (1.4 s for 500,000 rows, which take far longer to change); records are read only for keys that
/// are.
class SharedKeyRows {
  public:
    /// `rows` is the open query of the rows to change, of the products of `productCondition`; it
    /// has the key columns.
    SharedKeyRows(data::Database& database, SharedKeyTable table, const QString& productCondition,
                  data::TUniQuery& rows);

    /// Whether other rows share the key of the query's current row.
    bool holdsCurrentRow() const;

    /// Changes the record that the query's current row was read from; no record twice. `changes`
    /// are in the order of the amount columns; an amount that stays is not written.
    /// @return false when no record holds the old amounts: somebody else has changed or deleted the
    /// row since it was read.
    /// @throws data::DataError(Locked) when somebody else holds the record for 2000 ms.
    bool update(const std::vector<AmountChange>& changes);

  private:
    /// The selected records of one key; none once all are changed.
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
