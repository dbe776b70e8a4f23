#include "vatchange/run/row_source.h"

#include <QHash>
#include <algorithm>

#include "data/record/value_conversion.h"

namespace vatchange {

namespace {

constexpr int kToldRows = 100;

/// Identifies a row among others of its table; amounts, which the run changes, do not count.
size_t identityOf(const StepRows& step, const data::KeyValues& row) {
    size_t hash = 0;
    for (size_t i = 0; i < row.size(); ++i) {
        if (step.columns[i].kind != RowColumn::Kind::Amount)
            hash = qHash(data::valueToPlainText(row[i]), hash);
    }
    return hash;
}

/// Whether the row's product is passed over by the percent limit.
bool isLimited(const RunContext& run, const StepRows& step, const data::KeyValues& row) {
    return step.product && !run.limited.numbers.isEmpty() &&
           run.limited.numbers.contains(row[*step.product].toString());
}

}  // namespace

data::KeyValues rowOf(data::TUniQuery& query, const std::vector<RowColumn>& columns) {
    data::KeyValues row;
    row.reserve(columns.size());
    for (const RowColumn& column : columns) {
        const data::TQueryField& field = query.fieldByName(column.name);
        switch (column.kind) {
            case RowColumn::Kind::Text:
                row.emplace_back(field.asString());
                break;
            case RowColumn::Kind::Whole:
                row.emplace_back(field.asInteger());
                break;
            case RowColumn::Kind::Amount:
                row.emplace_back(field.asFloat());
                break;
        }
    }
    return row;
}

void openRows(data::TUniQuery& query, const QString& text, const std::vector<RowColumn>& columns) {
    query.sql().setText(text);
    query.open();
    for (const RowColumn& column : columns)
        query.fieldByName(column.name);
}

void storeRows(RunContext& run, const StepRows& step, data::TUniQuery& query,
               const std::function<bool(const data::KeyValues& row)>& accepts) {
    RowListWriter writer(*run.journal, run.result.run, step.table);
    for (qint64 visited = 1; !query.eof(); query.next(), ++visited) {
        const data::KeyValues row = rowOf(query, step.columns);
        if (!isLimited(run, step, row) && (!accepts || accepts(row)))
            writer.add(row);
        if (visited % kRowsOfNote == 0)
            run.ports.processEvents();
    }
    writer.finish();
}

QString rowText(const StepRows& step, const data::KeyValues& row) {
    QStringList parts;
    for (size_t i = 0; i < row.size(); ++i) {
        if (step.columns[i].kind != RowColumn::Kind::Amount)
            parts += step.columns[i].name.toLower() + u' ' + data::valueToPlainText(row[i]);
    }
    return parts.join(QStringLiteral(", "));
}

RowSource::RowSource(RunContext& run, const StepRows& step) : m_run(run), m_step(step) {
    data::RunJournal* journal = run.journal;
    if (journal)
        m_list = RowList::open(*journal, run.result.run, step.table);
    m_listedBefore = m_list.has_value();
    if (!m_list) {
        m_query = std::make_unique<data::TUniQuery>(&run.database);
        openRows(*m_query, run.progress ? step.laterQuery : step.query, step.columns);
    }
    if (journal && !m_list) {
        storeRows(run, step, *m_query, run.progress ? step.laterRow(run) : nullptr);
        m_query.reset();
        m_list = RowList::open(*journal, run.result.run, step.table);
    }
    m_count = m_list ? m_list->count() : m_query->recordCount();
}

RowSource::~RowSource() {
    m_run.setOrigin(0);
}

bool RowSource::next() {
    if (m_position > 0)
        m_run.ports.progress(m_position, m_count);
    for (;;) {
        if (m_position >= m_count || m_run.stopRequested())
            return false;
        if (m_query && m_position > 0)
            m_query->next();
        ++m_position;
        if (m_run.progress && m_run.progress->positions(m_step.table).contains(m_position))
            continue;
        if (m_list) {
            m_row = &m_list->row(m_position);
            break;
        }
        m_queried = rowOf(*m_query, m_step.columns);
        m_row = &m_queried;
        if (!isLimited(m_run, m_step, m_queried))
            break;
    }
    m_run.setOrigin(m_position);
    return true;
}

bool RowSource::followsChangedRow() const {
    return m_run.progress && m_run.progress->positions(m_step.table).contains(m_position - 1);
}

void RowSource::reportUnlisted() {
    if (!m_run.progress || !m_listedBefore)
        return;
    std::vector<size_t> listed;
    listed.reserve(static_cast<size_t>(m_count));
    for (qint64 position = 1; position <= m_count; ++position)
        listed.push_back(identityOf(m_step, m_list->row(position)));
    std::sort(listed.begin(), listed.end());
    std::vector<bool> seen(listed.size());
    data::TUniQuery query(&m_run.database);
    qint64 unlisted = 0;
    openRows(query, m_step.query, m_step.columns);
    for (; !query.eof(); query.next()) {
        const data::KeyValues row = rowOf(query, m_step.columns);
        if (isLimited(m_run, m_step, row))
            continue;
        const auto [first, last] =
            std::equal_range(listed.begin(), listed.end(), identityOf(m_step, row));
        auto place = first;
        while (place != last && seen[static_cast<size_t>(place - listed.begin())])
            ++place;
        if (place != last)
            seen[static_cast<size_t>(place - listed.begin())] = true;
        else if (++unlisted <= kToldRows)
            m_run.ports.log(QStringLiteral("Huomaa: taulun %1 riviä ei muutettu, koska se ei ollut "
                                           "mukana ajon alkaessa: %2")
                                .arg(m_step.table, rowText(m_step, row)));
    }
    if (unlisted > kToldRows)
        m_run.ports.log(QStringLiteral("Huomaa: taulussa %1 on yhteensä %2 riviä, jotka eivät "
                                       "olleet mukana ajon alkaessa ja joita ei muutettu")
                            .arg(m_step.table)
                            .arg(unlisted));
}

}  // namespace vatchange
