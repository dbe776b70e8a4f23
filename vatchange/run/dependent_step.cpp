#include "vatchange/run/dependent_step.h"

#include <algorithm>
#include <optional>

#include "vatchange/run/pending_rows.h"
#include "vatchange/run/shared_key_rows.h"

namespace vatchange {

namespace {

/// Changes the rows of one step.
class DependentRows {
  public:
    DependentRows(RunContext& run, const DependentStep& step)
        : m_run(run),
          m_step(step),
          m_rows(run, step.rows),
          m_update(&run.database),
          m_logsRows(step.logsRows || run.definition.productLog) {}

    void convertAll() {
        if (!m_step.header.isEmpty())
            m_run.ports.log(m_step.header);
        m_update.sql().add(m_step.update);
        if (m_run.progress)
            m_pending.emplace(m_run.database, m_step.table, changedRecords());
        else if (m_step.sharesKeys && m_rows.count() > 0)
            m_shared.emplace(m_run.database, m_step.table, m_run.condition);
        m_converted = &m_run.changedRows(m_step.what);
        while (m_rows.next()) {
            if (m_step.rowStatus)
                m_run.ports.status(m_step.rowStatus(m_rows.row()));
            convertRow();
        }
        if (m_run.result.cancelled)
            return;
        convertOthers();
        m_rows.reportUnlisted();
    }

    qint64 converted() const { return *m_converted; }

  private:
    /// The records that this run has changed, or a run that was made after it.
    data::IdSet changedRecords() {
        data::IdSet records = m_run.progress->records(m_step.rows.table);
        for (const data::JournalRun& later : m_run.journal->runs()) {
            if (later.number <= m_run.result.run || later.kind != data::RunKind::Change ||
                later.state == data::RunState::Undone)
                continue;
            RunProgress::read(*m_run.journal, later.number)
                .records(m_step.rows.table)
                .visit([&records](data::RecordId id) { records.add(id); });
        }
        return records;
    }

    void convertRow() {
        const data::KeyValues& row = m_rows.row();
        const data::KeyValues key = m_step.keyOf(row);
        const Amounts old = m_step.amountsOf(row);
        if (m_pending) {
            convertPending(row, key, old);
            return;
        }
        const std::vector<AmountChange> changes = m_step.convert(old);
        if (!m_shared || !m_shared->holds(key))
            execute(key, changes);
        else if (!m_shared->update(key, changes))
            return reportLost(row, changes);
        reportChanged(row, changes);
    }

    void execute(const data::KeyValues& key, const std::vector<AmountChange>& changes) {
        for (size_t i = 0; i < changes.size(); ++i)
            m_update.paramByName(m_step.amountParameters[static_cast<qsizetype>(i)])
                .setFloat(changes[i].after);
        for (size_t i = 0; i < key.size(); ++i)
            m_update.paramByName(m_step.keyParameters[static_cast<qsizetype>(i)]).setValue(key[i]);
        m_update.execSql();
    }

    void convertPending(const data::KeyValues& row, const data::KeyValues& key,
                        const Amounts& old) {
        std::vector<AmountChange> changes;
        switch (m_pending->update(key, old, m_step.convert, changes)) {
            case PendingRows::Outcome::Changed:
                return reportChanged(row, changes);
            case PendingRows::Outcome::Lost:
                return reportLost(row, changes);
            case PendingRows::Outcome::OtherAmounts:
                m_others.push_back({hashOf(key), m_rows.position()});
        }
    }

    static size_t hashOf(const data::KeyValues& key) {
        size_t hash = 0;
        for (const data::Value& value : key)
            hash = qHash(value.toString(), hash);
        return hash;
    }

    /// Rows whose amounts another program has changed since they were listed: if as many records
    /// of their key are left, these are they.
    void convertOthers() {
        std::sort(m_others.begin(), m_others.end());
        for (auto first = m_others.begin(); first != m_others.end();) {
            auto last = first;
            while (last != m_others.end() && last->key == first->key)
                ++last;
            convertGroup(first, last);
            first = last;
        }
    }

    struct Other {
        size_t key;  // its hash
        qint64 position;
        bool operator<(const Other& other) const {
            return key != other.key ? key < other.key : position < other.position;
        }
    };
    using Others = std::vector<Other>;

    void convertGroup(Others::iterator first, Others::iterator last) {
        const KeyRecords::Found left =
            m_pending->unchanged(m_step.keyOf(m_rows.rowAt(first->position)));
        const bool complete = left.ids.size() == static_cast<size_t>(last - first);
        for (auto other = first; other != last; ++other) {
            const data::KeyValues row = m_rows.rowAt(other->position);
            const auto place = static_cast<size_t>(other - first);
            std::vector<AmountChange> changes;
            m_run.setOrigin(other->position);
            if (complete && m_pending->updateRecord(m_step.keyOf(row), left.ids[place],
                                                    left.records[place].amounts, m_step.convert,
                                                    changes) == PendingRows::Outcome::Changed)
                reportChanged(row, changes);
            else
                reportLost(row, m_step.convert(m_step.amountsOf(row)));
        }
    }

    void reportChanged(const data::KeyValues& row, const std::vector<AmountChange>& changes) {
        ++*m_converted;
        if (m_logsRows)
            m_run.ports.log(m_step.line(row, changes));
        if (m_step.changed)
            m_step.changed(row);
    }

    /// Logs each row that another program changed since it was read; counts one failed step.
    void reportLost(const data::KeyValues& row, const std::vector<AmountChange>& changes) {
        const QString text = m_step.lost + m_step.line(row, changes) +
                             QStringLiteral(
                                 ": riviä ei muutettu, koska muu ohjelma on muuttanut tai "
                                 "poistanut sen ajon aikana");
        m_run.ports.log(text);
        if (m_lostReported)
            return;
        m_lostReported = true;
        ++m_run.result.failedSteps;
        m_run.result.failures += text;
    }

    RunContext& m_run;
    const DependentStep& m_step;
    RowSource m_rows;
    data::TUniQuery m_update;
    const bool m_logsRows;
    std::optional<SharedKeyRows> m_shared;
    std::optional<PendingRows> m_pending;  // of a resumed run
    Others m_others;
    qint64* m_converted = nullptr;
    bool m_lostReported = false;
};

}  // namespace

data::KeyValues DependentStep::keyOf(const data::KeyValues& row) const {
    return {row.begin(), row.begin() + table.keyColumns.size()};
}

Amounts DependentStep::amountsOf(const data::KeyValues& row) const {
    Amounts amounts;
    for (qsizetype i = 0; i < table.amountColumns.size(); ++i)
        amounts.push_back(row[static_cast<size_t>(table.keyColumns.size() + i)].toDouble());
    return amounts;
}

void convertDependentRows(RunContext& run, const DependentStep& step) {
    run.ports.log(step.begin);
    if (!step.status.isEmpty())
        run.ports.stepStatus(step.status);
    DependentRows rows(run, step);
    rows.convertAll();
    run.database.flush();
    if (step.logsCount && run.definition.productLog)
        run.ports.log(rowCountLine(rows.converted()));
}

}  // namespace vatchange
