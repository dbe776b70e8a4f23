#pragma once

#include "data/table/tb_table.h"
#include "vatchange/orders/order_rules.h"

namespace vatchange {

/// Opens a table of order headers or rows on its primary index. @throws data::DataError.
inline void openOrderTable(data::TtbTable& table, data::Database& database, const char* name) {
    table.setDatabaseName(data::kDdfDatabase);
    table.setDatabase(&database);
    table.setTableName(QString::fromLatin1(name));
    table.setLockWait(std::chrono::milliseconds(2000));
    table.open();
}

inline data::TField& fieldOf(data::TtbTable& table, const char* name) {
    return table.fieldByName(QString::fromLatin1(name));
}

/// A float field with the precision of its storage.
class AmountField {
  public:
    AmountField(data::TtbTable& table, const char* name) : m_field(fieldOf(table, name)) {
        const data::RecordLayout& layout = table.layout();
        const data::TFieldCacheItem& item = layout.field(layout.indexOf(m_field.fieldName()));
        if (item.storage == data::Storage::Float && item.storedLength == sizeof(float))
            m_precision = Amount::Precision::Single;
    }
    Amount get() const { return Amount(m_field.asFloat(), m_precision); }
    Amount empty() const { return Amount(0.0, m_precision); }
    void set(double value) { m_field.setFloat(value); }
    const data::TField& field() const { return m_field; }

  private:
    data::TField& m_field;
    Amount::Precision m_precision = Amount::Precision::Double;
};

}  // namespace vatchange
