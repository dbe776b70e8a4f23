#include "vatchange/changes/product_names.h"

#include "vatchange/journal/record_fields.h"

namespace vatchange {

ProductNames::ProductNames(data::Database& database)
    : m_file(openIfThere(database, QStringLiteral("TUOTE"))) {
    if (!m_file)
        return;
    m_name = fieldOf(m_file->layout(), "NIMI");
}

QString ProductNames::nameIn(const QByteArray& record) const {
    return m_name == nullptr ? QString() : textOf(*m_name, record);
}

QString ProductNames::nameOf(const QString& number) const {
    if (m_name == nullptr || number.isEmpty())
        return {};
    const auto found = m_file->seek(0, data::SeekOp::Equal, {data::Value(number)}, 1);
    return found.empty() ? QString() : nameIn(found.front().bytes);
}

}  // namespace vatchange
