#pragma once

#include <QString>
#include <QStringList>
#include <deque>

#include "data/engine/engine.h"
#include "vatchange/definition/load_rules.h"
#include "vatchange/ports/run_ports.h"

namespace vatchange {

/// Rows that a run has changed, by what they are ("Kampanjarivit"); what a step changed before it
/// failed is counted.
struct ChangedRows {
    QString what;
    qint64 rows = 0;
};

/// How a run of one definition ended.
struct RunResult {
    bool refused = false;  ///< a check of the definition, date, classes or of a second run stopped
                           ///< it before any change
    bool cancelled = false;   ///< stopped by the user, between two rows or after a failed label
    int failedSteps = 0;      ///< steps that reported an error
    int skippedProducts = 0;  ///< products whose record was locked by somebody else
    qint64 products = 0;      ///< products converted
    bool markWritten = false;

    /// Of the products that were skipped, this many are listed by number.
    static constexpr int kListedProducts = 500;
    QStringList skippedNumbers;
    std::deque<ChangedRows> changed;  ///< in the order of the steps that were taken
    QStringList failures;             ///< what the failed steps reported, in their order
    QString refusal;                  ///< why the run was refused

    /// Everything went through: exit status 0.
    bool clean() const {
        return !refused && !cancelled && failedSteps == 0 && skippedProducts == 0;
    }
};

/// Runs one change definition against the company's database. Unattended a definition with problems
/// is refused; a person is asked. Then: checks, dependent price tables,
/// product groups, store prices, products, open orders, product code check, run mark, in this
/// order. Each step is caught by itself: its error is reported and the run goes on with the next.
/// No transaction spans the run. Throws nothing from the database.
RunResult runChange(data::Database& database, const LoadedDefinition& loaded, RunPorts& ports);

}  // namespace vatchange
