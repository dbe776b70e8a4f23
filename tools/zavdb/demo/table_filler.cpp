#include "tools/zavdb/demo/table_filler.h"

#include <algorithm>

#include "data/error.h"
#include "data/record/record_codec.h"

namespace tools::demo {

namespace {

// large enough for cheap commits, small enough for a short write-ahead log
constexpr qint64 kBatch = 50000;

}  // namespace

TableFiller::TableFiller(data::Database& database, const QString& table)
    : m_table(table), m_file(database.openTable(table)) {
    const data::RecordLayout& layout = m_file->layout();
    m_empty = QByteArray(layout.recordLength(), '\0');
    for (const data::TFieldCacheItem& item : layout.fields())
        data::clearField(item, reinterpret_cast<uchar*>(m_empty.data()));
}

const data::TFieldCacheItem& TableFiller::field(std::u16string_view name) {
    const auto known = m_fields.find(name);
    if (known != m_fields.end())
        return *known->second;
    const data::RecordLayout& layout = m_file->layout();
    const QString text = QStringView(name).toString();
    const int index = layout.indexOf(text);
    if (index < 0)
        throw data::DataError(data::ErrorKind::NoSuchField, m_table, text);
    // names are literals, so the view stays valid
    return *m_fields.emplace(name, &layout.field(index)).first->second;
}

TableFiller& TableFiller::row() {
    store();
    m_record = m_empty;
    m_open = true;
    return *this;
}

void TableFiller::store() {
    if (!m_open)
        return;
    m_open = false;
    m_file->insert(m_record);
    ++m_rows;
}

TableFiller& TableFiller::setValue(std::u16string_view name, const data::Value& value) {
    data::writeValue(field(name), bytes(), value, m_table);
    return *this;
}

TableFiller& TableFiller::set(std::u16string_view name, const QString& text) {
    data::writeText(field(name), bytes(), text, m_table);
    return *this;
}

TableFiller& TableFiller::set(std::u16string_view name, int number) {
    data::writeInteger(field(name), bytes(), number, m_table);
    return *this;
}

TableFiller& TableFiller::set(std::u16string_view name, double number) {
    data::writeFloat(field(name), bytes(), number, m_table);
    return *this;
}

TableFiller& TableFiller::set(std::u16string_view name, bool yes) {
    return setValue(name, yes);
}

TableFiller& TableFiller::set(std::u16string_view name, QDate date) {
    return setValue(name, date);
}

TableFiller& TableFiller::set(std::u16string_view name, QTime time) {
    return setValue(name, time);
}

TableFiller& TableFiller::set(std::u16string_view name, const QDateTime& time) {
    return setValue(name, time);
}

void inBatches(data::Database& database, qint64 count, const std::function<void(int)>& body) {
    for (qint64 start = 0; start < count; start += kBatch) {
        const qint64 end = std::min(start + kBatch, count);
        database.inTransaction([&] {
            for (qint64 i = start; i < end; ++i)
                body(static_cast<int>(i));
        });
    }
}

}  // namespace tools::demo
