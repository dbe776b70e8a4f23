#pragma once

#include <QString>

#include "data/engine/engine.h"

namespace search {

/// Reads a row of the browsed table by field name (case-insensitive); a missing field reads as
/// empty. Keeps references: layout and record must outlive it.
class GridRow {
  public:
    GridRow(const data::RecordLayout& layout, const data::StoredRecord& record)
        : m_layout(&layout), m_record(&record) {}

    data::Value value(const QString& field) const;  ///< invalid if the table has no such field
    qint64 integer(const QString& field) const;
    double number(const QString& field) const;
    bool flag(const QString& field) const;
    QString text(const QString& field) const;  ///< without a display format

    const data::RecordLayout& layout() const { return *m_layout; }
    const data::StoredRecord& record() const { return *m_record; }

  private:
    const data::RecordLayout* m_layout;
    const data::StoredRecord* m_record;
};

}  // namespace search
