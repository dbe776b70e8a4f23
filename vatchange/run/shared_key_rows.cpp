#include "vatchange/run/shared_key_rows.h"

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

QString sharedKeysQuery(const SharedKeyTable& table, const QString& productCondition) {
    QStringList qualified;
    for (const QString& column : table.keyColumns)
        qualified += table.name + u'.' + column;
    const QString columns = qualified.join(QStringLiteral(", "));
    return QStringLiteral("select ") + columns + QStringLiteral(" from ") + table.name +
           QStringLiteral(", TUOTE where (tuote = numero) and ") + productCondition +
           QStringLiteral(" group by ") + columns + QStringLiteral(" having count(*) > 1");
}

/// Index of a column in a list, ignoring case; -1 if absent.
qsizetype placeOf(const QString& column, const QStringList& columns) {
    for (qsizetype i = 0; i < columns.size(); ++i) {
        if (columns[i].compare(column, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

data::KeyValues valuesOf(const std::vector<const data::TQueryField*>& columns) {
    data::KeyValues values;
    values.reserve(columns.size());
    for (const data::TQueryField* column : columns)
        values.push_back(column->value());
    return values;
}

bool sameKeyValue(const data::TField& field, const data::Value& value) {
    switch (field.kind()) {
        case data::Kind::String:
            return sameText(field.asString(), value.toString());
        case data::Kind::Float:
            return recordOfRow({value.toDouble()}, {{{field.asFloat()}}},
                               {field.size() == 4 ? kSingleTolerance : kDoubleTolerance})
                .has_value();
        default:
            return field.asInteger() == value.toLongLong();
    }
}

}  // namespace

SharedKeyRows::SharedKeyRows(data::Database& database, SharedKeyTable table,
                             const QString& productCondition, data::TUniQuery& rows)
    : m_database(database), m_description(std::move(table)), m_row(keyColumns(rows)) {
    if (rows.recordCount() == 0)
        return;
    data::TUniQuery shared(&database);
    shared.sql().add(sharedKeysQuery(m_description, productCondition));
    shared.open();
    const Columns columns = keyColumns(shared);
    for (; !shared.eof(); shared.next())
        m_keys += foldedKeyText(valuesOf(columns));
}

SharedKeyRows::Columns SharedKeyRows::keyColumns(data::TUniQuery& query) const {
    Columns columns;
    for (const QString& name : m_description.keyColumns)
        columns.push_back(&query.fieldByName(name));
    return columns;
}

bool SharedKeyRows::holdsCurrentRow() const {
    return !m_keys.isEmpty() && m_keys.contains(foldedKeyText(valuesOf(m_row)));
}

void SharedKeyRows::open() {
    if (m_table)
        return;
    auto table = std::make_unique<data::TtbTable>();
    table->setDatabase(&m_database);
    table->setTableName(m_description.name);
    table->open();
    m_table = std::move(table);
    for (const QString& column : m_description.amountColumns)
        m_tolerances.push_back(m_table->fieldByName(column).size() == 4 ? kSingleTolerance
                                                                        : kDoubleTolerance);
    chooseIndex();
}

/// Chooses the index that starts with the most key columns. Indexes differ by company; without one
/// the whole table is scanned. A float column ends the search key, because drivers may round
/// floats.
void SharedKeyRows::chooseIndex() {
    for (const QString& index : m_table->indexNames()) {
        std::vector<size_t> columns;
        for (const QString& name : m_table->indexFields(index)) {
            const qsizetype column = placeOf(name, m_description.keyColumns);
            if (column < 0 || m_table->fieldByName(name).kind() == data::Kind::Float)
                break;
            columns.push_back(static_cast<size_t>(column));
        }
        if (columns.size() > m_indexColumns.size()) {
            m_indexColumns = columns;
            m_table->setIndexName(index);
        }
    }
}

/// Whether the current record has this key and meets the query's conditions.
bool SharedKeyRows::belongs(const data::KeyValues& key) const {
    for (size_t i = 0; i < key.size(); ++i) {
        const QString& column = m_description.keyColumns[static_cast<qsizetype>(i)];
        if (!sameKeyValue(std::as_const(*m_table).fieldByName(column), key[i]))
            return false;
    }
    return m_description.selected(*m_table);
}

Amounts SharedKeyRows::amounts() const {
    Amounts values;
    for (const QString& column : m_description.amountColumns)
        values.push_back(std::as_const(*m_table).fieldByName(column).asFloat());
    return values;
}

SharedKeyRows::Records SharedKeyRows::read(const data::KeyValues& key) {
    Records found;
    if (m_indexColumns.empty()) {
        m_table->first();
    } else {
        data::KeyValues leading;
        for (const size_t column : m_indexColumns)
            leading.push_back(key[column]);
        m_table->setRange(leading, leading);
    }
    for (; !m_table->eof(); m_table->next()) {
        if (belongs(key)) {
            found.records.push_back({amounts()});
            found.ids.push_back(m_table->recordId());
        }
    }
    m_table->cancelRange();
    return found;
}

bool SharedKeyRows::update(const std::vector<AmountChange>& changes) {
    open();
    const data::KeyValues key = valuesOf(m_row);
    const QString text = keyText(key);
    auto found = m_records.find(text);
    if (found == m_records.end())
        found = m_records.emplace(text, read(key)).first;
    Records& group = found->second;

    Amounts before;
    for (const AmountChange& change : changes)
        before.push_back(change.before);
    const auto place = recordOfRow(before, group.records, m_tolerances);
    if (!place)
        return false;
    KeyRecord& record = group.records[*place];
    record.taken = true;
    const Amounts stored = record.amounts;
    const data::RecordId id = group.ids[*place];
    if (++group.taken == group.records.size())
        group = {};
    return change(id, key, stored, changes);
}

/// Writes the changes if the record is unchanged.
bool SharedKeyRows::change(data::RecordId id, const data::KeyValues& key, const Amounts& stored,
                           const std::vector<AmountChange>& changes) {
    if (!m_table->gotoBookmark({id, {}}))
        return false;
    m_table->edit();
    if (!belongs(key) || amounts() != stored) {
        m_table->cancel();
        return false;
    }
    for (size_t i = 0; i < changes.size(); ++i) {
        if (changes[i].after != changes[i].before)
            m_table->fieldByName(m_description.amountColumns[static_cast<qsizetype>(i)])
                .setFloat(changes[i].after);
    }
    m_table->post();
    return true;
}

}  // namespace vatchange
