#pragma once

#include <QStringList>

#include "data/engine.h"
#include "vatchange/rules/change_definition.h"
#include "vatchange/run/run_ports.h"

namespace vatchange {

/// How a run of one definition ended.
struct RunResult {
    bool refused =
        false;  ///< an early-date, class or second-run check stopped it before any change
    bool cancelled = false;   ///< stopped by the user between two rows
    int failedSteps = 0;      ///< steps that reported an error
    int skippedProducts = 0;  ///< products whose record was locked by somebody else
    qint64 products = 0;      ///< products converted
    bool markWritten = false;
    /// Everything went through: exit status 0.
    bool clean() const {
        return !refused && !cancelled && failedSteps == 0 && skippedProducts == 0;
    }
};

/// Runs one change definition against the company's database: checks, dependent price tables,
/// product groups, store prices, products, open orders, product code check, run mark, in this
/// order. Each step is caught by itself: its error is reported and the run goes on with the next.
/// No transaction spans the run. Throws nothing from the database.
RunResult runChange(data::Database& database, const ChangeDefinition& definition, RunPorts& ports);

}  // namespace vatchange
