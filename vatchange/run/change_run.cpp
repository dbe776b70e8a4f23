#include "vatchange/run/change_run.h"

#include "company/run_mark.h"
#include "data/clock.h"
#include "vatchange/journal/earlier_runs.h"
#include "vatchange/rules/log_texts.h"
#include "vatchange/run/company_findings.h"
#include "vatchange/run/dependent_step.h"
#include "vatchange/run/journal_session.h"
#include "vatchange/run/run_context.h"
#include "vatchange/run/run_plan.h"
#include "vatchange/run/run_verification.h"
#include "vatchange/run/safety_limits.h"
#include "vatchange/run/unfinished_runs.h"

namespace vatchange {

namespace {

/// Texts before and after a failed step's error message.
struct ErrorWording {
    QString before;
    QString after = {};
};

/// Makes durable what a failed step has changed, before its error is shown.
void flushAfterError(RunContext& run) {
    try {
        run.database.flush();
    } catch (const std::exception& error) {
        run.ports.log(QStringLiteral("Virhe muutosten tallennuksessa: ") + errorText(error));
    }
}

/// Runs one step. Returns false if it failed; shows and counts the failure.
template <typename Step>
bool ExecWithExceptionHandling(RunContext& run, const ErrorWording& wording, Step&& step) {
    try {
        step();
        run.database.flush();  // before anything is reported as finished
        return true;
    } catch (const std::exception& error) {
        const auto* failure = dynamic_cast<const data::DataError*>(&error);
        if (failure && (failure->kind() == data::ErrorKind::Locked ||
                        failure->kind() == data::ErrorKind::NoConnection))
            run.leftBehind = true;
        flushAfterError(run);
        const QString text = wording.before + stepErrorText(error) + wording.after;
        ++run.result.failedSteps;
        run.result.failures += text;
        run.ports.NaytaViesti(text);
        return false;
    }
}

/// Runs one step unless the user has stopped the run.
template <typename Step>
bool attempt(RunContext& run, const ErrorWording& wording, Step&& step) {
    return run.stopRequested() || ExecWithExceptionHandling(run, wording, step);
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

/// Tells which dependent rows an unfinished run has changed, and how to finish it.
void reportUnfinished(RunContext& run, const QString& dependents) {
    if (dependents.isEmpty() || !run.journal || !data::isUnfinished(stateOf(run)))
        return;
    run.ports.log(QStringLiteral("Ajo jäi vajaaksi, ja jo kerrottuja rivejä ovat: ") + dependents +
                  QStringLiteral(". Jatka ajoa %1: uusi ajo kertoisi uudestaan ne, joiden "
                                 "tuotteella on vielä vanha alv-luokka.")
                      .arg(run.result.run));
}

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
        attempt(run, {QStringLiteral("Virhe asiakashinnaston päivityksessä: ")}, [&] {
            run.ports.beginStep(RunStep::CustomerPrices);
            convertDependentRows(run, customerPriceStep(run));
        });
    }
    if (run.definition.campaigns) {
        attempt(run, {QStringLiteral("Virhe kampanjan päivityksessä: ")}, [&] {
            run.ports.beginStep(RunStep::Campaigns);
            convertDependentRows(run, campaignStep(run));
        });
    }
    if (run.definition.recurringInvoicing) {
        attempt(run,
                {QStringLiteral("Virhe "), QStringLiteral(" vakiolaskutuksen päivityksessä. ")},
                [&] {
                    run.ports.beginStep(RunStep::RecurringInvoices);
                    convertDependentRows(run, recurringInvoiceStep(run));
                });
    }
    if (run.definition.quantityDiscounts) {
        attempt(run, {QStringLiteral("Virhe "), QStringLiteral(" määräalen päivityksessä. ")}, [&] {
            run.ports.beginStep(RunStep::QuantityDiscounts);
            convertDependentRows(run, quantityDiscountStep(run));
        });
    }
}

void convertProductsAndGroups(RunContext& run, LabelTable labels) {
    if (run.stopRequested())
        return;
    run.ports.beginStep(RunStep::ProductGroups);
    run.ports.log(QStringLiteral("Aloitetaan tuoteryhmien päivitys"));
    for (const GroupUpdate& update : groupUpdates(run.definition)) {
        if (!attempt(run, {QStringLiteral("Virhe tuoteryhmän päivityksessä: ")},
                     [&] { updateProductGroups(run, update); }))
            run.outcome.failedTables.insert(QStringLiteral("TRYHMA"));
    }
    attempt(run, {QStringLiteral("Virhe alvien muutoksessa ->")}, [&] {
        run.ports.beginStep(RunStep::StorePrices);
        updateStorePrices(run);
    });
    if (run.stopRequested())
        return;
    run.ports.beginStep(RunStep::Products);
    run.ports.log(QStringLiteral("Aloitetaan tuotteiden päivitys"));
    run.changedRows(QStringLiteral("Tuotteet")) = 0;  // before what goes with products
    const bool converted = attempt(run, {QStringLiteral("Virhe tuotetietojen muutoksessa -> ")},
                                   [&] { convertProducts(run, labels); });
    if (!converted) {
        run.leftBehind = true;
        run.outcome.failedTables.insert(QStringLiteral("TUOTE"));
        run.ports.log(QStringLiteral("Ennen virhettä muutettiin tuotteita ") +
                      QString::number(run.result.products) + QStringLiteral(" kpl"));
    }
    run.changedRows(QStringLiteral("Tuotteet")) = run.result.products;
}

void convertOrders(RunContext& run) {
    if (run.definition.salesOrders) {
        if (!attempt(run, {QStringLiteral("Virhe myyntitilausten päivityksessä: ")}, [&] {
                run.ports.beginStep(RunStep::SalesOrders);
                convertSalesOrders(run);
            }))
            run.outcome.failedTables.insert(QStringLiteral("MTRIVI"));
    }
    if (run.definition.purchaseOrders) {
        if (!attempt(run, {QStringLiteral("Virhe ostotilausten päivityksessä: ")}, [&] {
                run.ports.beginStep(RunStep::PurchaseOrders);
                convertPurchaseOrders(run);
            }))
            run.outcome.failedTables.insert(QStringLiteral("WINOTRI"));
    }
}

void MarkVatChangeAsDone(RunContext& run) {
    if (!company::programWritesMark(run.ports.programFileName()))
        return;
    ExecWithExceptionHandling(run, {QStringLiteral("Virhe ajomerkinnän kirjoituksessa: ")}, [&] {
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

/// Logs what looks like a mistake in the definition.
void reportFindings(RunContext& run, const LoadedDefinition& loaded, const CompanyFacts& facts,
                    const RunOptions& options) {
    std::vector<EarlierDefinition> earlier;
    try {
        if (run.journal && options.batch != 0)
            earlier = definitionsOfBatch(*run.journal, options.batch, run.result.run);
    } catch (const std::exception& error) {
        run.ports.log(QStringLiteral("Huomaa: erän aiempia ajoja ei voi lukea: ") +
                      errorText(error));
    }
    CompanyFindingOptions search;
    search.exceptRun = run.result.run;
    search.resumed = run.progress != nullptr;
    for (const auto& findings : {definitionFindings(loaded, facts, earlier),
                                 companyFindings(run.database, run.definition, search)}) {
        for (const DefinitionFinding& finding : findings)
            run.ports.log(QStringLiteral("Huomaa: ") + finding.text);
    }
}

void runSteps(RunContext& run) {
    const LabelTable labels = prepareShelfLabels(run);
    run.ports.log(QStringLiteral("Aloitetaan taksavaiheet, parametrit ->"));
    run.ports.log(QStringLiteral("Rajaus: ") + run.condition + QStringLiteral(" Pyöristys: ") +
                  roundingText(run.definition));
    run.ports.log(QStringLiteral("Aloitetaan taksavaihe"));
    if (!run.ports.unattended())
        run.ports.plan(plannedSteps(run));
    convertDependentTables(run);
    const QString dependents = changedSoFar(run.result);
    if (run.definition.products)
        convertProductsAndGroups(run, labels);
    convertOrders(run);
    if (run.definition.checkProductCodes) {
        attempt(run, {QStringLiteral("Virhe tuotekoodien tarkastuksessa: ")}, [&] {
            run.ports.beginStep(RunStep::ProductCodes);
            run.ports.stepStatus(QStringLiteral("Tarkastetaan verkkokauppatuotteiden tuotekoodit"));
            checkProductCodes(run);
        });
    }
    if (run.stopRequested())
        reportStop(run);
    else
        MarkVatChangeAsDone(run);
    reportUnfinished(run, dependents);
}

/// During a run commits are flushed together; see Database::deferFlushes().
void deferFlushes(RunContext& run, bool on) {
    ExecWithExceptionHandling(run, {QStringLiteral("Virhe muutosten tallennuksessa: ")},
                              [&] { run.database.deferFlushes(on); });
}

/// A stopped run has left the journal before its verification was logged.
void endStoppedAttempt(RunContext& run) {
    data::RunJournal* journal = run.database.journal();
    if (run.journal != nullptr || journal == nullptr || run.result.run == 0)
        return;
    try {
        endAttempt(run, *journal);
    } catch (const std::exception& error) {
        run.ports.log(QStringLiteral("Virhe ajopäiväkirjan kirjoituksessa: ") + errorText(error));
    }
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
    const RunAttempt attempt = newAttempt();
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
    run.attempt = attempt;
    if (definitionAllowsRun(run, loaded, facts, options) && checkDefinition(run) &&
        productCountAllowsRun(run, options) && earlierRunsAllow(run, options) &&
        enterJournal(run, loaded, options)) {
        reportFindings(run, loaded, facts, options);
        deferFlushes(run, true);
        try {
            runSteps(run);
            // a run that was asked to end must have ended before the verification takes its time
            if (result.cancelled)
                leaveJournal(run);
            compareAtEnd(run, options);
            verifyAtEnd(run);
            deferFlushes(run, false);
            endStoppedAttempt(run);
        } catch (...) {  // of the ports
            run.leftBehind = true;
            deferFlushes(run, false);
            leaveJournal(run);
            releaseCompany(database, ports);
            throw;
        }
        leaveJournal(run);
    } else {
        result.refused = true;
    }
    releaseCompany(database, ports);
    return result;
}

}  // namespace vatchange
