#include "search/grid_row.h"

#include "data/record/record_codec.h"
#include "data/record/value_conversion.h"

namespace search {

data::Value GridRow::value(const QString& field) const {
    const int index = m_layout->indexOf(field);
    if (index < 0 || m_record->bytes.isEmpty())
        return {};
    return data::readValue(m_layout->field(index),
                           reinterpret_cast<const uchar*>(m_record->bytes.constData()));
}

qint64 GridRow::integer(const QString& field) const {
    return data::valueToInteger(value(field));
}

double GridRow::number(const QString& field) const {
    return data::valueToFloat(value(field));
}

bool GridRow::flag(const QString& field) const {
    return data::valueToBoolean(value(field));
}

QString GridRow::text(const QString& field) const {
    const int index = m_layout->indexOf(field);
    return index < 0 ? QString() : data::valueToText(m_layout->field(index), value(field));
}

}  // namespace search
