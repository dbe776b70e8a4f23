#include "vatchange/changes/change_list.h"

#include "data/record/record_codec.h"

namespace vatchange {

ChangeList::ChangeList() {
    intern(QString());
}

int ChangeList::addRun(Run run) {
    m_runs.push_back(std::move(run));
    return static_cast<int>(m_runs.size()) - 1;
}

int ChangeList::addTable(const QString& name) {
    for (qsizetype i = 0; i < m_tables.size(); ++i) {
        if (m_tables[i].compare(name, Qt::CaseInsensitive) == 0)
            return static_cast<int>(i);
    }
    m_tables += name;
    m_changedRecords.push_back(0);
    return static_cast<int>(m_tables.size()) - 1;
}

int ChangeList::addField(ChangedField field) {
    for (size_t i = 0; i < m_fields.size(); ++i) {
        if (m_fields[i].table.compare(field.table, Qt::CaseInsensitive) == 0 &&
            m_fields[i].field == field.field)
            return static_cast<int>(i);
    }
    m_fields.push_back(std::move(field));
    return static_cast<int>(m_fields.size()) - 1;
}

int ChangeList::addProduct(const QString& number, bool* added) {
    const auto [place, isNew] =
        m_productPlaces.try_emplace(number, static_cast<int>(m_products.size()));
    if (isNew)
        m_products.push_back({number, {}});
    if (added != nullptr)
        *added = isNew;
    return place->second;
}

int ChangeList::addRecord(const Record& record, bool changed) {
    m_recordRun.push_back(static_cast<quint8>(record.run));
    m_recordTable.push_back(static_cast<quint8>(record.table));
    m_recordId.push_back(record.id);
    m_recordProduct.push_back(record.product);
    m_recordKey.push_back(static_cast<quint32>(m_keys.size()));
    m_keys += record.key.toUtf8();
    if (changed)
        ++m_changedRecords[at(record.table)];
    return recordCount() - 1;
}

int ChangeList::addRow(int record, int field, ChangeKind kind, double before, double after) {
    m_rowRecord.push_back(static_cast<quint32>(record));
    m_rowField.push_back(static_cast<quint16>(field));
    m_rowKind.push_back(kind);
    m_rowFindings.push_back(0);
    m_rowReason.push_back(0);
    m_before.push_back(before);
    m_after.push_back(after);
    return rowCount() - 1;
}

void ChangeList::mark(int row, ChangeFinding finding, const QString& reason) {
    FindingSet& findings = m_rowFindings[at(row)];
    if ((findings & bitOf(finding)) == 0)
        ++m_findingCounts[static_cast<size_t>(finding)];
    findings |= bitOf(finding);
    if (reason.isEmpty())
        return;
    quint32& stored = m_rowReason[at(row)];
    stored = intern(stored == 0 ? reason : m_texts[stored] + QStringLiteral("; ") + reason);
}

void ChangeList::unmark(int row, ChangeFinding finding) {
    FindingSet& findings = m_rowFindings[at(row)];
    if ((findings & bitOf(finding)) == 0)
        return;
    findings = static_cast<FindingSet>(findings & ~bitOf(finding));
    --m_findingCounts[static_cast<size_t>(finding)];
}

ChangeList::Record ChangeList::record(int record) const {
    const auto i = at(record);
    const qsizetype begin = m_recordKey[i];
    const qsizetype end = i + 1 < m_recordKey.size() ? m_recordKey[i + 1] : m_keys.size();
    return {m_recordRun[i], m_recordTable[i], m_recordId[i], m_recordProduct[i],
            QString::fromUtf8(QByteArrayView(m_keys).sliced(begin, end - begin))};
}

std::optional<double> ChangeList::difference(int row) const {
    if (kind(row) != ChangeKind::Field || !field(row).amount)
        return std::nullopt;
    return after(row) - before(row);
}

std::optional<double> ChangeList::percent(int row) const {
    if (kind(row) != ChangeKind::Field || !field(row).amount || !(before(row) > 0))
        return std::nullopt;
    return (after(row) / before(row) - 1.0) * 100.0;
}

QString ChangeList::text(int row, double value) const {
    if (kind(row) == ChangeKind::Inserted || kind(row) == ChangeKind::Deleted)
        return {};
    const ChangedField& described = field(row);
    if (!described.number)
        return m_texts[static_cast<size_t>(value)];
    if (!described.amount)
        return QString::number(static_cast<qint64>(value));
    return described.single ? data::shortestText(static_cast<float>(value))
                            : data::shortestText(value);
}

quint32 ChangeList::intern(const QString& text) {
    const auto [place, isNew] =
        m_textPlaces.try_emplace(text, static_cast<quint32>(m_texts.size()));
    if (isNew)
        m_texts.push_back(text);
    return place->second;
}

}  // namespace vatchange
