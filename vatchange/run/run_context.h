#pragma once

#include <QSet>
#include <QString>
#include <QStringList>
#include <exception>
#include <map>
#include <memory>
#include <set>

#include "data/engine/engine.h"
#include "data/error.h"
#include "data/sql/uni_query.h"
#include "vatchange/definition/definition_problems.h"
#include "vatchange/journal/run_attempts.h"
#include "vatchange/journal/run_notes.h"
#include "vatchange/journal/run_outcome.h"
#include "vatchange/journal/run_progress.h"
#include "vatchange/ports/run_ports.h"
#include "vatchange/rules/price_rules.h"
#include "vatchange/rules/statements.h"
#include "vatchange/run/change_run.h"
#include "vatchange/run/shelf_labels.h"

namespace vatchange {

/// VAT classes of the company, read once at the start of a run: rate in percent by class.
class VatClasses {
  public:
    static VatClasses read(data::Database& database);

    bool exists(int vatClass) const { return m_rates.count(vatClass) > 0; }
    double ratePercent(qint64 vatClass) const;  ///< 0 for an unknown class
    std::set<int> numbers() const;
    const VatRates& rates() const { return m_rates; }

  private:
    VatRates m_rates;
};

/// The products that the percent limit passed over before the first change.
struct LimitedProducts {
    QSet<QString> numbers;
    std::set<qint64> quantityDiscounts;  ///< of these products, converted nevertheless
};

/// State shared by the steps of a run.
struct RunContext {
    RunContext(data::Database& companyDatabase, const ChangeDefinition& change, RunPorts& runPorts,
               RunResult& runResult);

    data::Database& database;
    const ChangeDefinition& definition;
    RunPorts& ports;
    RunResult& result;
    const PriceRules prices;
    const QString condition;    ///< product selection
    VatClasses classes;         ///< set by checkDefinition()
    double targetFactor = 1.0;  ///< VAT factor of the target class

    /// Counter of a kind of changed rows, created at 0. Valid as long as the result.
    qint64& changedRows(const QString& what);
    /// Logs, counts and lists a product whose record another program holds.
    void skipProduct(const QString& number);

    data::RunJournal* journal = nullptr;  ///< that records the run; none without a journal
    /// What a resumed run had done before; none for a new run.
    std::unique_ptr<RunProgress> progress;
    LimitedProducts limited;
    /// Set when a step leaves products or orders behind that a resumed run can still change.
    bool leftBehind = false;
    RunAttempt attempt;                 ///< begun with the run, before its checks
    RunOutcome outcome;                 ///< what verification has to know of the steps
    void setOrigin(qint64 origin);      ///< see RunJournal::setOrigin()
    void mark(const QByteArray& text);  ///< appends a mark to the journal

    /// Processes window events, then returns whether to stop; called between rows.
    bool stopRequested();
    /// Ends the run like the user's stop. `cause` goes into the closing message.
    void stop(const QString& cause);
    QString stopCause;

    /// Calls `row` for each row of an open query until the user stops. Returns the rows visited.
    template <typename Row>
    qint64 walk(data::TUniQuery& query, Row&& row) {
        const qint64 total = query.recordCount();
        qint64 visited = 0;
        for (; !query.eof() && !stopRequested(); query.next()) {
            row();
            ports.progress(++visited, total);
        }
        return visited;
    }
};

using data::errorText;

/// errorText() of what ended a step. A rerun does not find every row that the step left unchanged
/// (dependent rows whose product is converted), so it does not advise to try again.
QString stepErrorText(const std::exception& error);
/// errorText() of a label or web shop mark that could not be written: a rerun does not write it,
/// since its product is converted, but resuming the run does.
QString markErrorText(const std::exception& error);

// The steps, in order. A step throws on failure; rows it has already changed stay changed.

/// Reports problems of the definition: refuses it if unattended, otherwise asks unless the user has
/// agreed to all of them. Returns false if it must not run; the reason has been shown.
bool definitionAllowsRun(RunContext& run, const LoadedDefinition& loaded, const CompanyFacts& facts,
                         const RunOptions& options);
/// Why the definition's VAT classes do not allow a run; empty if they do.
QString classProblem(const ChangeDefinition& definition, const VatClasses& classes);
/// Reads the VAT classes; checks them and the date. Returns false if the run must not start; the
/// reason has been shown.
bool checkDefinition(RunContext& run);

/// Updates one of the three class fields of the product groups.
void updateProductGroups(RunContext& run, const GroupUpdate& update);
void updateStorePrices(RunContext& run);
void convertProducts(RunContext& run, LabelTable labels);
void convertSalesOrders(RunContext& run);
void convertPurchaseOrders(RunContext& run);
void checkProductCodes(RunContext& run);

}  // namespace vatchange
