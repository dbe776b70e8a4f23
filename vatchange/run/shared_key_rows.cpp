#include "vatchange/run/shared_key_rows.h"

#include "data/sql/uni_query.h"

namespace vatchange {

namespace {

/// A key as text, without trailing blanks.
QString keyText(const data::KeyValues& key) {
    QString text;
    for (const data::Value& value : key) {
        QString part = value.typeId() == QMetaType::Double
                           ? QString::number(value.toDouble() + 0.0, 'g', 17)  // -0 is 0
                           : value.toString();
        while (part.endsWith(u' '))
            part.chop(1);
        text += part + u'\n';
    }
    return text;
}

/// Case-folded, because engines may compare keys without case. A false match is harmless: the row
/// is then changed through its record.
QString foldedKeyText(const data::KeyValues& key) {
    return keyText(key).toCaseFolded();
}

QString sharedKeysQuery(const PriceTable& table, const QString& productCondition) {
    QStringList qualified;
    for (const QString& column : table.keyColumns)
        qualified += table.name + u'.' + column;
    const QString columns = qualified.join(QStringLiteral(", "));
    return QStringLiteral("select ") + columns + QStringLiteral(" from ") + table.name +
           QStringLiteral(", TUOTE where (tuote = numero) and ") + productCondition +
           QStringLiteral(" group by ") + columns + QStringLiteral(" having count(*) > 1");
}

}  // namespace

SharedKeyRows::SharedKeyRows(data::Database& database, const PriceTable& table,
                             const QString& productCondition)
    : m_table(database, table) {
    data::TUniQuery shared(&database);
    shared.sql().add(sharedKeysQuery(table, productCondition));
    shared.open();
    std::vector<const data::TQueryField*> columns;
    for (const QString& name : table.keyColumns)
        columns.push_back(&shared.fieldByName(name));
    for (; !shared.eof(); shared.next()) {
        data::KeyValues key;
        for (const data::TQueryField* column : columns)
            key.push_back(column->value());
        m_keys += foldedKeyText(key);
    }
}

bool SharedKeyRows::holds(const data::KeyValues& key) const {
    return !m_keys.isEmpty() && m_keys.contains(foldedKeyText(key));
}

bool SharedKeyRows::update(const data::KeyValues& key, const std::vector<AmountChange>& changes) {
    const QString text = keyText(key);
    auto found = m_records.find(text);
    if (found == m_records.end())
        found = m_records.emplace(text, Records{m_table.find(key), 0}).first;
    Records& group = found->second;

    Amounts before;
    for (const AmountChange& change : changes)
        before.push_back(change.before);
    const auto place = recordOfRow(before, group.records, m_table.tolerances());
    if (!place)
        return false;
    KeyRecord& record = group.records[*place];
    record.taken = true;
    const Amounts stored = record.amounts;
    const data::RecordId id = group.ids[*place];
    if (++group.taken == group.records.size())
        group = {};
    return m_table.change(id, key, stored, changes);
}

}  // namespace vatchange
