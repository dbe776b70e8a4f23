#pragma once

#include <QString>
#include <QStringList>
#include <deque>

#include "data/engine/engine.h"
#include "vatchange/definition/load_rules.h"
#include "vatchange/ports/run_ports.h"

namespace vatchange {

/// Number of changed rows of a kind ("Kampanjarivit"), including those changed before a step
/// failed.
struct ChangedRows {
    QString what;
    qint64 rows = 0;
};

/// How a run of one definition ended.
struct RunResult {
    bool refused = false;  ///< stopped before any change: definition, date, classes or another run
    bool cancelled = false;   ///< stopped by the user, between rows or after a failed label
    int failedSteps = 0;      ///< steps that reported an error
    int skippedProducts = 0;  ///< products whose record another program had locked
    qint64 products = 0;      ///< products converted
    bool markWritten = false;

    /// At most this many skipped products are listed.
    static constexpr int kListedProducts = 500;
    QStringList skippedNumbers;
    std::deque<ChangedRows> changed;  ///< in step order
    QStringList failures;             ///< error messages of the failed steps, in step order
    QString refusal;                  ///< why the run was refused
    qint64 lostLogLines = 0;          ///< lines that the change log lacks; set by runWithSummary()
    QString logProblem;               ///< why, in Finnish, with the file

    /// Complete success: exit status 0.
    bool clean() const {
        return !refused && !cancelled && failedSteps == 0 && skippedProducts == 0 &&
               lostLogLines == 0;
    }
};

/// Runs a change definition against the company's database. A definition with problems is refused
/// if unattended; otherwise the user decides. Order: checks, dependent price tables, product
/// groups, store prices, products, open orders, product code check, run mark. A failed step is
/// reported and the run continues with the next. No transaction spans the run. Database errors do
/// not propagate.
RunResult runChange(data::Database& database, const LoadedDefinition& loaded, RunPorts& ports);

}  // namespace vatchange
