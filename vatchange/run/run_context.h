#pragma once

#include <QString>
#include <QStringList>
#include <exception>
#include <map>
#include <set>

#include "data/engine/engine.h"
#include "data/error.h"
#include "data/sql/uni_query.h"
#include "vatchange/definition/definition_problems.h"
#include "vatchange/ports/run_ports.h"
#include "vatchange/rules/price_rules.h"
#include "vatchange/rules/statements.h"
#include "vatchange/run/change_run.h"
#include "vatchange/run/shelf_labels.h"

namespace vatchange {

/// The company's VAT classes, read once at the start of a run: rate in percent by class number.
class VatClasses {
  public:
    static VatClasses read(data::Database& database);

    bool exists(int vatClass) const { return m_rates.count(vatClass) > 0; }
    double ratePercent(qint64 vatClass) const;  ///< 0 for a class that there is not
    std::set<int> numbers() const;

  private:
    std::map<qint64, double> m_rates;
};

/// What the steps of one run share.
struct RunContext {
    RunContext(data::Database& companyDatabase, const ChangeDefinition& change, RunPorts& runPorts,
               RunResult& runResult);

    data::Database& database;
    const ChangeDefinition& definition;
    RunPorts& ports;
    RunResult& result;
    const PriceRules prices;
    const QString condition;    ///< product selection
    VatClasses classes;         ///< known once the checks have passed
    double targetFactor = 1.0;  ///< VAT factor of the target class

    /// The counter of a kind of changed rows; new ones begin at 0. Valid as long as the result.
    qint64& changedRows(const QString& what);
    /// A product whose record somebody else holds: logged, counted and listed.
    void passOverProduct(const QString& number);

    /// Between two rows: lets window messages be processed, then tells whether to stop.
    bool stopRequested();
    /// Ends the run as the user's stop does. `cause` says after what, for the closing message.
    void stop(const QString& cause);
    QString stopCause;

    /// Walks an open query's rows; stops when the user does. @return rows visited.
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

// The steps, in the order in which a run takes them. A failure is thrown out of the step; rows
// changed before it stay changed.

/// Reads what judging the definition needs. A table that cannot be read is not known: the steps
/// that need it report that.
CompanyFacts readCompanyFacts(data::Database& database, const ChangeDefinition& definition);
/// The problems of the definition: unattended they refuse it, a person is asked. @return false when
/// it must not run; the reason has been told.
bool definitionAllowsRun(RunContext& run, const LoadedDefinition& loaded,
                         const CompanyFacts& facts);
/// Early date and VAT classes. @return false when the run must not start; the reason has been
/// shown. Reads the VAT classes.
bool checkDefinition(RunContext& run);

void convertCustomerPriceLists(RunContext& run);
void convertCampaigns(RunContext& run);
void convertRecurringInvoices(RunContext& run);
void convertQuantityDiscounts(RunContext& run);
/// One of the three class fields of the product groups.
void updateProductGroups(RunContext& run, const GroupUpdate& update);
void updateStorePrices(RunContext& run);
void convertProducts(RunContext& run, LabelTable labels);
void convertSalesOrders(RunContext& run);
void convertPurchaseOrders(RunContext& run);
void checkProductCodes(RunContext& run);

}  // namespace vatchange
