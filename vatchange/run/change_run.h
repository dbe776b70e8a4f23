#pragma once

#include <QString>
#include <QStringList>
#include <deque>
#include <functional>
#include <optional>

#include "data/engine/run_journal.h"
#include "vatchange/definition/load_rules.h"
#include "vatchange/journal/verification.h"
#include "vatchange/ports/run_ports.h"

namespace vatchange {

/// Number of changed rows of a kind ("Kampanjarivit"), including those changed before a step
/// failed.
struct ChangedRows {
    QString what;
    qint64 rows = 0;
};

/// Told by a run that is refused because another process is in a run of the company.
inline const QString kOtherRunText = QStringLiteral(
    "Yrityksen toinen ajo on kesken. Tätä ajoa ei aloiteta; yritä uudestaan, kun se on päättynyt.");

/// How a run is made.
struct RunOptions {
    qint64 resume = 0;  ///< number of the run to be resumed; 0: a new run
    qint64 batch = 0;   ///< number of the first run of the batch; 0: this is it, or no batch
    /// DefinitionProblem::text() of the problems in spite of which the user has agreed to the run.
    QStringList agreedProblems = {};
    /// Compares the run, once its steps are through, with its rehearsal; nothing if there was none.
    std::function<std::optional<RehearsalComparison>(data::Database& database, qint64 run)>
        compareWithRehearsal = {};
};

/// How a run of one definition ended.
struct RunResult {
    qint64 run = 0;  ///< its number in the journal; 0 without a journal or if refused
    data::RunState state = data::RunState::Done;  ///< as stored in the journal; Done if refused
    bool refused = false;  ///< stopped before any change: definition, date, classes or another run
    bool blocked = false;  ///< refused, because an earlier run is unfinished
    bool cancelled = false;      ///< stopped by the user, between rows or after a failed label
    int failedSteps = 0;         ///< steps that reported an error
    int skippedProducts = 0;     ///< products whose record another program had locked
    qint64 products = 0;         ///< products converted
    qint64 limitedProducts = 0;  ///< products passed over by the percent limit
    bool markWritten = false;

    /// At most this many skipped products are listed.
    static constexpr int kListedProducts = 500;
    QStringList skippedNumbers;
    QStringList limitedNumbers;
    std::deque<ChangedRows> changed;  ///< in step order
    QStringList failures;             ///< error messages of the failed steps, in step order
    QString refusal;                  ///< why the run was refused
    std::optional<Verification> verification;  ///< none without a journal, or if it failed
    qint64 lostLogLines = 0;  ///< lines that the change log lacks; set by runWithSummary()
    QString logProblem;       ///< why, in Finnish, with the file

    /// Complete success: exit status 0.
    bool clean() const {
        return !refused && !cancelled && failedSteps == 0 && skippedProducts == 0 &&
               limitedProducts == 0 && lostLogLines == 0 &&
               !(verification && verification->unexplained());
    }
};

/// Runs a change definition against the company's database. A definition with problems is refused
/// if unattended; otherwise the user decides. Order: checks, dependent price tables, product
/// groups, store prices, products, open orders, product code check, run mark. A failed step is
/// reported and the run continues with the next. No transaction spans the run. Database errors do
/// not propagate.
///
/// Where the database keeps a journal, a run that cannot be entered there is refused. A resumed run
/// finishes what an earlier attempt left: the same definition, VAT rates and table layouts, and it
/// changes no dependent row that the run has changed already.
RunResult runChange(data::Database& database, const LoadedDefinition& loaded, RunPorts& ports,
                    const RunOptions& options = {});

}  // namespace vatchange
