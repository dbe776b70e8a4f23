#include "vatchange/run/change_run.h"

#include "company/run_mark.h"
#include "company/unfinished_note.h"
#include "data/clock.h"
#include "vatchange/rules/log_texts.h"
#include "vatchange/run/earlier_runs.h"
#include "vatchange/run/run_context.h"

namespace vatchange {

namespace {

const QString kNoticePrefix = QStringLiteral("Huomaa: ");

/// Texts before and after a failed step's error message.
struct ErrorWording {
    QString before;
    QString after = {};
};

/// Runs one step. Returns false if it failed; shows and counts the failure.
template <typename Step>
bool guarded(RunContext& run, const ErrorWording& wording, Step&& step) {
    try {
        step();
        return true;
    } catch (const std::exception& error) {
        const QString text = wording.before + errorText(error) + wording.after;
        ++run.result.failedSteps;
        run.result.failures += text;
        run.ports.NaytaViesti(text);
        return false;
    }
}

/// Runs one step unless the user has stopped the run.
template <typename Step>
bool attempt(RunContext& run, const ErrorWording& wording, Step&& step) {
    return run.stopRequested() || guarded(run, wording, step);
}

/// Changed rows so far, as "kampanjarivit 3, tuotteet 12"; empty if none.
QString changedSoFar(const RunResult& result) {
    QStringList kinds;
    for (const ChangedRows& kind : result.changed) {
        if (kind.rows > 0)
            kinds += kind.what.front().toLower() + kind.what.sliced(1) + u' ' +
                     QString::number(kind.rows);
    }
    return kinds.join(QStringLiteral(", "));
}

/// The unfinished-run note, from before the first change to the end of the run. It remains if
/// products were skipped whose dependent rows this or an earlier run has already changed.
class RunInProgress {
  public:
    explicit RunInProgress(const RunContext& run)
        : m_run(run), m_wasNoted(company::writeUnfinishedNote(run.ports.definitionName())) {}
    ~RunInProgress() {
        if ((m_dependents.isEmpty() && !m_wasNoted) || m_run.result.clean())
            company::removeUnfinishedNote(m_run.ports.definitionName());
    }
    RunInProgress(const RunInProgress&) = delete;
    RunInProgress& operator=(const RunInProgress&) = delete;

    /// Call right after the dependent tables.
    void dependentsDone() { m_dependents = changedSoFar(m_run.result); }

    /// Warns that a rerun of the definition would change dependent rows again.
    void warnOfRerun() const {
        if (m_dependents.isEmpty() || m_run.result.clean())
            return;
        m_run.ports.log(QStringLiteral("Ajo jäi vajaaksi, ja jo kerrottuja rivejä ovat: ") +
                        m_dependents +
                        QStringLiteral(". Uusi ajo kertoisi uudestaan ne, joiden tuotteella on "
                                       "vielä vanha alv-luokka: ota nämä taulut pois "
                                       "määrittelystä ennen uutta ajoa."));
    }

  private:
    const RunContext& m_run;
    const bool m_wasNoted;
    QString m_dependents;
};

/// Finds the label table if labels are on. Reports an unreadable one; products are then changed
/// without labels.
LabelTable prepareShelfLabels(RunContext& run) {
    LabelTable labels = LabelTable::NotWritten;
    if (run.definition.products && run.definition.writeShelfLabels) {
        attempt(run,
                {QStringLiteral("Virhe hr päivityksessä "),
                 QStringLiteral(" Tuotteet muutetaan ilman hyllynreunaetikettejä.")},
                [&] { labels = findLabelTable(run.database); });
    }
    return labels;
}

void convertDependentTables(RunContext& run) {
    if (run.definition.customerPriceLists) {
        attempt(run, {QStringLiteral("Virhe asiakashinnaston päivityksessä: ")},
                [&] { convertCustomerPriceLists(run); });
    }
    if (run.definition.campaigns) {
        attempt(run, {QStringLiteral("Virhe kampanjan päivityksessä: ")},
                [&] { convertCampaigns(run); });
    }
    if (run.definition.recurringInvoicing) {
        attempt(run,
                {QStringLiteral("Virhe "), QStringLiteral(" vakiolaskutuksen päivityksessä. ")},
                [&] { convertRecurringInvoices(run); });
    }
    if (run.definition.quantityDiscounts) {
        attempt(run, {QStringLiteral("Virhe "), QStringLiteral(" määräalen päivityksessä. ")},
                [&] { convertQuantityDiscounts(run); });
    }
}

void convertProductsAndGroups(RunContext& run, LabelTable labels) {
    if (run.stopRequested())
        return;
    run.ports.log(QStringLiteral("Aloitetaan tuoteryhmien päivitys"));
    for (const GroupUpdate& update : groupUpdates(run.definition)) {
        attempt(run, {QStringLiteral("Virhe tuoteryhmän päivityksessä: ")},
                [&] { updateProductGroups(run, update); });
    }
    attempt(run, {QStringLiteral("Virhe alvien muutoksessa ->")}, [&] { updateStorePrices(run); });
    if (run.stopRequested())
        return;
    run.ports.log(QStringLiteral("Aloitetaan tuotteiden päivitys"));
    run.changedRows(QStringLiteral("Tuotteet")) = 0;  // before what goes with products
    const bool converted = attempt(run, {QStringLiteral("Virhe tuotetietojen muutoksessa -> ")},
                                   [&] { convertProducts(run, labels); });
    if (!converted) {
        run.ports.log(QStringLiteral("Ennen virhettä muutettiin tuotteita ") +
                      QString::number(run.result.products) + QStringLiteral(" kpl"));
    }
    run.changedRows(QStringLiteral("Tuotteet")) = run.result.products;
}

void convertOrders(RunContext& run) {
    if (run.definition.salesOrders) {
        attempt(run, {QStringLiteral("Virhe myyntitilausten päivityksessä: ")},
                [&] { convertSalesOrders(run); });
    }
    if (run.definition.purchaseOrders) {
        attempt(run, {QStringLiteral("Virhe ostotilausten päivityksessä: ")},
                [&] { convertPurchaseOrders(run); });
    }
}

void writeMark(RunContext& run) {
    if (!company::programWritesMark(run.ports.programFileName()))
        return;
    guarded(run, {QStringLiteral("Virhe ajomerkinnän kirjoituksessa: ")}, [&] {
        company::writeExecutionMark(run.database, data::Clock::now());
        run.result.markWritten = true;
    });
}

void reportStop(RunContext& run) {
    const QString changed = changedSoFar(run.result);
    const QString cause = run.stopCause.isEmpty() ? QString() : u' ' + run.stopCause;
    run.ports.NaytaViesti(
        QStringLiteral("Ajo keskeytettiin") + cause + QStringLiteral(". ") +
        (changed.isEmpty() ? QStringLiteral("Yhtään riviä ei ehditty muuttaa.")
                           : QStringLiteral("Tehdyt muutokset jäävät voimaan: ") + changed + u'.'));
}

void runSteps(RunContext& run) {
    RunInProgress inProgress(run);
    const LabelTable labels = prepareShelfLabels(run);
    run.ports.log(QStringLiteral("Aloitetaan taksavaiheet, parametrit ->"));
    run.ports.log(QStringLiteral("Rajaus: ") + run.condition + QStringLiteral(" Pyöristys: ") +
                  roundingText(run.definition));
    run.ports.log(QStringLiteral("Aloitetaan taksavaihe"));
    convertDependentTables(run);
    inProgress.dependentsDone();
    if (run.definition.products)
        convertProductsAndGroups(run, labels);
    convertOrders(run);
    if (run.definition.checkProductCodes) {
        attempt(run, {QStringLiteral("Virhe tuotekoodien tarkastuksessa: ")}, [&] {
            run.ports.status(QStringLiteral("Tarkastetaan verkkokauppatuotteiden tuotekoodit"));
            checkProductCodes(run);
        });
    }
    if (run.stopRequested())
        reportStop(run);
    else
        writeMark(run);
    inProgress.warnOfRerun();
}

/// Claims the company for this run. Returns the reason if impossible, else empty.
QString claimCompany(data::Database& database) {
    try {
        if (database.beginRun())
            return {};
        return kOtherRunText;
    } catch (const std::exception& error) {
        return QStringLiteral("Virhe ajon aloituksessa: ") + errorText(error);
    }
}

void releaseCompany(data::Database& database, RunPorts& ports) {
    try {
        database.endRun();
    } catch (const std::exception& error) {
        ports.log(QStringLiteral("Virhe ajon lopetuksessa: ") + errorText(error));
    }
}

}  // namespace

RunResult runChange(data::Database& database, const LoadedDefinition& loaded, RunPorts& ports,
                    const RunOptions& options) {
    RunResult result;
    result.refusal = claimCompany(database);
    if (!result.refusal.isEmpty()) {
        result.refused = true;
        ports.NaytaViesti(result.refusal);
        return result;
    }
    const CompanyFacts facts = readCompanyFacts(database, loaded.definition);
    ChangeDefinition definition = loaded.definition;
    dropMissingGroups(definition, facts);
    RunContext run(database, definition, ports, result);
    if (definitionAllowsRun(run, loaded, facts) && checkDefinition(run) &&
        earlierRunsAllow(run, options)) {
        for (const QString& note : definitionNotes(loaded, facts))
            ports.log(kNoticePrefix + note);
        runSteps(run);
    } else {
        result.refused = true;
    }
    releaseCompany(database, ports);
    return result;
}

}  // namespace vatchange
