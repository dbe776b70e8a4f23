#include "vatchange/run/key_records.h"

namespace vatchange {

namespace {

/// Index of a column in a list, ignoring case; -1 if absent.
qsizetype placeOf(const QString& column, const QStringList& columns) {
    for (qsizetype i = 0; i < columns.size(); ++i) {
        if (columns[i].compare(column, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
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

KeyRecords::KeyRecords(data::Database& database, PriceTable table)
    : m_database(database), m_description(std::move(table)) {}

void KeyRecords::open() {
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
void KeyRecords::chooseIndex() {
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
bool KeyRecords::belongs(const data::KeyValues& key) const {
    for (size_t i = 0; i < key.size(); ++i) {
        const QString& column = m_description.keyColumns[static_cast<qsizetype>(i)];
        if (!sameKeyValue(std::as_const(*m_table).fieldByName(column), key[i]))
            return false;
    }
    return !m_description.selected || m_description.selected(*m_table);
}

Amounts KeyRecords::amounts() const {
    Amounts values;
    for (const QString& column : m_description.amountColumns)
        values.push_back(std::as_const(*m_table).fieldByName(column).asFloat());
    return values;
}

KeyRecords::Found KeyRecords::find(const data::KeyValues& key) {
    open();
    Found found;
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

bool KeyRecords::change(data::RecordId id, const data::KeyValues& key, const Amounts& stored,
                        const std::vector<AmountChange>& changes) {
    open();
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
    if (m_description.stamp)
        m_description.stamp(*m_table);
    m_table->post();
    return true;
}

}  // namespace vatchange
