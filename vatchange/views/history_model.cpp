#include "vatchange/views/history_model.h"

#include <QLocale>
#include <algorithm>

#include "company/unfinished_note.h"
#include "framework/core/moment_text.h"
#include "vatchange/journal/run_attempts.h"
#include "vatchange/report/run_text.h"

namespace vatchange {

namespace {

using data::JournalRun;
using data::RunKind;

qint64 secondsOf(data::RunJournal& journal, const JournalRun& run) {
    qint64 seconds = 0;
    for (const RunAttempt& attempt : runAttempts(journal, run)) {
        if (!attempt.ended.isValid())
            return -1;
        seconds += attempt.seconds();
    }
    return seconds;
}

QString cellText(const HistoryRun& run, int column) {
    const JournalRun& head = run.head;
    switch (column) {
        case HistoryModel::Number:
            return head.number == 0 ? QString() : QString::number(head.number);
        case HistoryModel::Started:
            return framework::momentText(head.started);
        case HistoryModel::Duration:
            return run.seconds < 0 ? QString() : framework::durationText(run.seconds);
        case HistoryModel::What:
            if (head.number == 0)
                return definitionText(head) + QStringLiteral(" (vanhan version ajo)");
            return head.kind == RunKind::Undo
                       ? QStringLiteral("Ajon %1 peruminen").arg(head.undoneRun)
                       : definitionText(head);
        case HistoryModel::Result:
            return stateName(head.state);
        case HistoryModel::Records:
            return head.number == 0 ? QString() : QLocale(QLocale::Finnish).toString(head.rows);
        case HistoryModel::Who:
            return whoText(head);
        case HistoryModel::BatchColumn:
            return head.batch == 0 ? QString() : QString::number(head.batch);
        default:
            return {};
    }
}

}  // namespace

void HistoryModel::read(data::RunJournal* journal) {
    std::vector<HistoryRun> runs;
    for (const company::UnfinishedNote& note : company::readUnfinishedNotes()) {
        HistoryRun run;
        run.head.state = data::RunState::Interrupted;
        run.head.definition = note.definition;
        run.head.started = note.started;
        run.head.computer = note.computer;
        runs.push_back(run);
    }
    if (journal != nullptr) {
        for (const JournalRun& head : journal->runs())
            runs.push_back({head, secondsOf(*journal, head)});
    }
    std::reverse(runs.begin(), runs.end());
    beginResetModel();
    m_runs = std::move(runs);
    endResetModel();
}

int HistoryModel::rowOf(qint64 number) const {
    const auto found = std::find_if(m_runs.begin(), m_runs.end(), [number](const HistoryRun& run) {
        return run.head.number == number;
    });
    return found == m_runs.end() ? -1 : static_cast<int>(found - m_runs.begin());
}

int HistoryModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_runs.size());
}

int HistoryModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : Columns;
}

QVariant HistoryModel::data(const QModelIndex& index, int role) const {
    const bool number = index.column() == Number || index.column() == Records ||
                        index.column() == BatchColumn || index.column() == Duration;
    if (role == Qt::DisplayRole)
        return cellText(run(index.row()), index.column());
    if (role == Qt::ToolTipRole && index.column() == Result)
        return stateMeaning(run(index.row()).head);
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(
            Qt::Alignment(Qt::AlignVCenter | (number ? Qt::AlignRight : Qt::AlignLeft)));
    return {};
}

QVariant HistoryModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const QStringList kHeadings{QStringLiteral("Ajo"),   QStringLiteral("Alkoi"),
                                       QStringLiteral("Kesto"), QStringLiteral("Mitä"),
                                       QStringLiteral("Tulos"), QStringLiteral("Tietueita"),
                                       QStringLiteral("Ajaja"), QStringLiteral("Eräajo")};
    return kHeadings.value(section);
}

}  // namespace vatchange
