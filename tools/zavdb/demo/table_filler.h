#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTime>
#include <functional>
#include <memory>
#include <unordered_map>

#include "data/engine/engine.h"

namespace tools::demo {

/// Adds records to one table of a new company. Fields that are not set keep their empty value.
class TableFiller {
  public:
    TableFiller(data::Database& database, const QString& table);

    /// Stores the previous record and starts the next.
    TableFiller& row();
    TableFiller& set(std::u16string_view field, const QString& text);
    TableFiller& set(std::u16string_view field, QStringView text) {
        return set(field, text.toString());
    }
    TableFiller& set(std::u16string_view field, const char16_t* text) {
        return set(field, QStringView(text).toString());
    }
    TableFiller& set(std::u16string_view field, int number);
    TableFiller& set(std::u16string_view field, double number);
    TableFiller& set(std::u16string_view field, bool yes);
    TableFiller& set(std::u16string_view field, QDate date);
    TableFiller& set(std::u16string_view field, QTime time);
    TableFiller& set(std::u16string_view field, const QDateTime& time);
    /// Stores the record started by row().
    void store();

    qint64 rows() const { return m_rows; }
    const QString& table() const { return m_table; }

  private:
    const data::TFieldCacheItem& field(std::u16string_view name);
    uchar* bytes() { return reinterpret_cast<uchar*>(m_record.data()); }
    TableFiller& setValue(std::u16string_view field, const data::Value& value);

    QString m_table;
    std::unique_ptr<data::TableFile> m_file;
    std::unordered_map<std::u16string_view, const data::TFieldCacheItem*> m_fields;
    QByteArray m_empty;
    QByteArray m_record;
    bool m_open = false;
    qint64 m_rows = 0;
};

/// Calls `body` with 0 to count - 1, a limited number of calls per transaction.
void inBatches(data::Database& database, qint64 count, const std::function<void(int)>& body);

}  // namespace tools::demo
