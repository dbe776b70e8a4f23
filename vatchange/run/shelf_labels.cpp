#include "vatchange/run/shelf_labels.h"

#include "vatchange/rules/statements.h"
#include "vatchange/run/run_context.h"

namespace vatchange {

namespace {

void bind(data::TUniQuery& query, const QString& number, qint64 labels) {
    query.paramByName(QStringLiteral("maara")).setInteger(labels);
    query.paramByName(QStringLiteral("tuote")).setString(number);
}

}  // namespace

LabelTable findLabelTable(data::Database& database) {
    data::TUniQuery columns(&database);
    columns.sql().add(kLabelColumnsQuery);
    columns.open();
    return columns.findField(QStringLiteral("maaraalehinta")) != nullptr
               ? LabelTable::WithQuantityDiscounts
               : LabelTable::Plain;
}

ShelfLabels::ShelfLabels(data::Database& database, RunPorts& ports, LabelTable table)
    : m_ports(ports), m_table(table), m_update(&database), m_insert(&database) {
    m_update.sql().add(labelUpdate(table == LabelTable::WithQuantityDiscounts));
    m_insert.sql().add(kLabelInsert);
}

ShelfLabels::Outcome ShelfLabels::write(const QString& number, qint64 labels) {
    if (m_table == LabelTable::NotWritten)
        return Outcome::Done;
    try {
        bind(m_update, number, labels);
        if (m_update.execSql() > 0) {
            ++m_written;
            return Outcome::Done;
        }
    } catch (const std::exception& error) {
        return failed(QStringLiteral("Virhe hr päivityksessä "), error);
    }
    try {
        bind(m_insert, number, labels);
        m_insert.execSql();
        ++m_written;
        return Outcome::Done;
    } catch (const std::exception& error) {
        return failed(QStringLiteral("Virhe hr lisäyksessä "), error);
    }
}

ShelfLabels::Outcome ShelfLabels::failed(const QString& text, const std::exception& error) {
    const QString report = text + markErrorText(error);
    if (m_failure.isEmpty())
        m_failure = report;
    m_ports.NaytaViesti(report);
    return !m_ports.unattended() && m_ports.ask(QStringLiteral("Jatketaanko? "))
               ? Outcome::Failed
               : Outcome::FailedAndEnd;
}

}  // namespace vatchange
