#include "shell/rehearsed_batch.h"

#include <QTextStream>
#include <algorithm>

#include "company/logs.h"
#include "data/error.h"
#include "platform/end_request.h"
#include "vatchange/report/run_report.h"

namespace shell {

namespace {

void tell(const QString& text) {
    QTextStream(stderr) << text << '\n';
}

// What a run would end with: no room for the copy is no fault of the company.
ExitStatus statusOf(const data::DataError& error) {
    switch (error.kind()) {
        case data::ErrorKind::DiskFull:
        case data::ErrorKind::Io:
        case data::ErrorKind::ReadOnly:
            return ExitStatus::Failed;
        default:
            return ExitStatus::Unavailable;
    }
}

}  // namespace

std::unique_ptr<RehearsedBatch> RehearsedBatch::begin(ExitStatus& status) {
    std::unique_ptr<RehearsedBatch> batch(new RehearsedBatch);
    try {
        tell(QStringLiteral("Koeajo: ") + vatchange::rehearsalRoom().text());
        batch->m_companyIsBusy = company::runGoesOn();
        batch->m_rehearsal = vatchange::Rehearsal::begin(
            [](const QString&, qint64, qint64) { return !platform::endRequested(); });
    } catch (const data::DataError& error) {
        tell(error.finnish());
        status = statusOf(error);
        return nullptr;
    } catch (const std::exception& error) {
        tell(data::errorText(error));
        status = ExitStatus::Unavailable;
        return nullptr;
    }
    if (!batch->m_rehearsal) {
        tell(QStringLiteral("Koeajo keskeytettiin"));
        status = ExitStatus::Failed;
        return nullptr;
    }
    batch->m_rehearsal->takeIntoUse();
    return batch;
}

void RehearsedBatch::adapt(BatchPorts& ports) {
    ports.generalLog = [](const QString&) {};
    ports.backup = [](const QString&) { return QString(); };
    ports.report = [](const std::vector<qint64>&, const QStringList&) { return QString(); };
    ports.otherRunGoesOn = [this] { return m_companyIsBusy; };
    ports.changeLog = [log = ports.changeLog](const QString& line) {
        log(line);
        if (!line.startsWith(kDefinitionBegins))
            tell(line);
    };
    ports.run = [this, run = ports.run](const vatchange::RunOptions& options) {
        vatchange::RunResult result = run(options);
        if (!result.refusal.isEmpty()) {
            tell(result.refusal);
            m_refusals += result.refusal;
        }
        if (result.run != 0 && std::find(m_runs.begin(), m_runs.end(), result.run) == m_runs.end())
            m_runs.push_back(result.run);
        return result;
    };
}

bool RehearsedBatch::finish() {
    try {
        if (m_rehearsal->holdsResults(m_runs)) {
            m_rehearsal->writeResults(m_runs);
            writeReport();
            tell(QStringLiteral("Koeajon tulokset: ") + m_rehearsal->folder());
        }
        return true;
    } catch (const std::exception& error) {
        tell(QStringLiteral("Koeajon tuloksia ei voi tallettaa: ") + data::errorText(error));
        return false;
    }
}

void RehearsedBatch::writeReport() {
    if (m_runs.empty())
        return;
    vatchange::ReportContext context;
    context.company = company::currentCompany().name;
    context.logName = company::AlvMuutosLogName();
    context.title = vatchange::rehearsalTitle(m_rehearsal->database(), m_runs);
    context.notes = QStringList(vatchange::kRehearsalNote) + m_refusals;
    vatchange::writeRunReport(m_rehearsal->database(), m_runs, context,
                              m_rehearsal->file(vatchange::Rehearsal::kReportFile));
}

}  // namespace shell
