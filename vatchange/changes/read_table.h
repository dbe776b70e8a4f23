#pragma once

#include <array>
#include <optional>
#include <unordered_map>
#include <vector>

#include "data/journal/id_set.h"
#include "vatchange/changes/change_list.h"
#include "vatchange/changes/expected_change.h"
#include "vatchange/journal/undo_tables.h"
#include "vatchange/rules/price_rules.h"

namespace vatchange {

/// A table that the run changed, while its changes are read.
class ReadTable {
  public:
    using Field = data::TFieldCacheItem;

    /// All must outlive this.
    ReadTable(UndoTable& table, ChangeList& list, const ChangeList::Run& run);

    UndoTable& table() const { return m_table; }
    int listTable() const { return m_listTable; }
    bool isProducts() const { return m_products; }

    /// A field that an entry changes, with its values as the list stores them.
    struct Value {
        int field = 0;  ///< index into ChangeList::fields()
        double before = 0.0;
        double after = 0.0;
    };
    /// The changed fields of an update, without dates of change. Valid until the next call.
    /// @throws data::DataError(Damaged).
    const std::vector<Value>& changedFields(const data::JournalEntry& entry);
    /// The list's field for whole records.
    int wholeField() const { return m_whole; }
    /// The list's field of a name; -1: the table has none.
    int listField(const QString& name);
    const ExpectedChange& expected(int listField) const { return m_expected.at(listField); }
    /// A field's value in a record, as the list stores it.
    double valueIn(int listField, const QByteArray& record);

    /// Whether the product's number stands in the record, but not in its key.
    bool productNeedsRecord() const { return m_number != nullptr && m_numberInKey < 0; }
    /// The product's number by the bytes of key 0's fields; empty if they do not hold it.
    QString productByKey(const QByteArray& key) const;
    QString productIn(const QByteArray& record) const;

    /// Of products: the amounts in a record and the list's fields of their levels.
    ProductPrices prices(const QByteArray& record) const;
    int levelField(int level) { return listField(kPriceColumns[static_cast<size_t>(level)]); }
    /// The VAT class of sales of a product, or the class of an order row.
    bool isClass(int listField) const { return m_class != nullptr && m_class == itemOf(listField); }

    // where the list has the records of this table; kept by the reader
    data::IdSet seen;
    std::unordered_map<data::RecordId, int> records;
    bool indexed = false;

  private:
    static constexpr int kUnlisted = -1;
    struct Place {
        const Field* item;
        int listField;
        bool ignored;
    };
    int listFieldOf(Place& place);
    const Field* itemOf(int listField) const;
    double stored(const Field& item, const QByteArray& record);

    UndoTable& m_table;
    ChangeList& m_list;
    const ChangeList::Run& m_run;
    const int m_listTable;
    const bool m_products;
    int m_whole;
    std::vector<Place> m_places;                    // by index in the layout
    std::vector<std::vector<quint16>> m_startsAt;   // by byte: the fields that begin there
    std::unordered_map<int, const Field*> m_items;  // by the list's field
    std::unordered_map<int, ExpectedChange> m_expected;
    const Field* m_number = nullptr;  // of the product
    int m_numberInKey = -1;
    std::array<const Field*, kPriceLevels> m_levels{};
    const Field* m_average = nullptr;
    const Field* m_last = nullptr;
    const Field* m_class = nullptr;
    QByteArray m_before;  // the fields that an entry changes; other bytes mean nothing
    QByteArray m_after;
    std::vector<Value> m_values;
};

}  // namespace vatchange
