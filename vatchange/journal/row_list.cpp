#include "vatchange/journal/row_list.h"

#include <QCborArray>
#include <QCborStreamWriter>
#include <QCborValue>
#include <utility>

#include "data/error.h"

namespace vatchange {

namespace {

QString listName(const QString& table) {
    return QStringLiteral("rows/") + table;
}

QString partName(const QString& list, qint64 number) {
    return list + u'/' + QString::number(number);
}

void write(QCborStreamWriter& writer, const data::Value& value) {
    switch (value.typeId()) {
        case QMetaType::UnknownType:
            writer.appendNull();
            break;
        case QMetaType::LongLong:
            writer.append(value.toLongLong());
            break;
        case QMetaType::Double:
            writer.append(value.toDouble());
            break;
        default:
            writer.append(value.toString());
    }
}

data::Value valueOf(const QCborValue& cell) {
    switch (cell.type()) {
        case QCborValue::Integer:
            return cell.toInteger();
        case QCborValue::Double:
            return cell.toDouble();
        case QCborValue::String:
            return cell.toString();
        default:
            return {};
    }
}

}  // namespace

RowListWriter::RowListWriter(data::RunJournal& journal, qint64 run, const QString& table)
    : m_journal(journal), m_run(run), m_name(listName(table)) {}

void RowListWriter::add(const data::KeyValues& row) {
    m_rows.push_back(row);
    ++m_count;
    if (m_rows.size() == kRowsOfNote)
        store();
}

void RowListWriter::store() {
    QByteArray bytes;
    QCborStreamWriter writer(&bytes);
    writer.startArray(m_rows.size());
    for (const data::KeyValues& row : m_rows) {
        writer.startArray(row.size());
        for (const data::Value& value : row)
            write(writer, value);
        writer.endArray();
    }
    writer.endArray();
    m_journal.setNote(m_run, partName(m_name, m_notes++), bytes);
    m_rows.clear();
}

void RowListWriter::finish() {
    if (!m_rows.empty())
        store();
    m_journal.setNote(m_run, m_name, QByteArray::number(m_count));
}

std::optional<RowList> RowList::open(data::RunJournal& journal, qint64 run, const QString& table) {
    const QString name = listName(table);
    const std::optional<QByteArray> count = journal.note(run, name);
    if (!count)
        return std::nullopt;
    return RowList(journal, run, name, count->toLongLong());
}

const data::KeyValues& RowList::row(qint64 position) {
    const qint64 note = (position - 1) / kRowsOfNote;
    if (note != m_note) {
        const QCborArray rows =
            QCborValue::fromCbor(
                m_journal->note(m_run, partName(m_name, note)).value_or(QByteArray()))
                .toArray();
        m_rows.clear();
        for (const QCborValue& row : rows) {
            data::KeyValues& values = m_rows.emplace_back();
            const QCborArray cells = row.toArray();
            for (const QCborValue& cell : cells)
                values.push_back(valueOf(cell));
        }
        m_note = note;
    }
    const auto place = static_cast<size_t>((position - 1) % kRowsOfNote);
    if (place >= m_rows.size())
        throw data::DataError(
            data::ErrorKind::Damaged, QStringLiteral("run journal"),
            QStringLiteral("run %1: the list %2 lacks row %3").arg(m_run).arg(m_name).arg(position))
            .inFinnish(QStringLiteral("ajopäiväkirjan ajon %1 rivilista on vioittunut").arg(m_run));
    return m_rows[place];
}

}  // namespace vatchange
