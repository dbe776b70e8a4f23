#include "shell/batch_papers.h"

#include <QDir>
#include <QFileInfo>

#include "company/backup.h"
#include "company/company.h"
#include "company/connection_module.h"
#include "company/logs.h"
#include "data/clock.h"
#include "data/error.h"
#include "vatchange/journal/run_refused.h"
#include "vatchange/report/run_report.h"

namespace shell {

namespace {

/// Runs the work. @return its failure in Finnish, else what it returned.
QString failureOf(const std::function<QString()>& work) {
    try {
        return work();
    } catch (const vatchange::RunRefused& refused) {
        return refused.finnish();
    } catch (const std::exception& error) {
        return data::errorText(error);
    }
}

}  // namespace

QString reportFolder() {
    return QFileInfo(company::dataFolderFile(QStringLiteral("RAPORTIT"))).absoluteFilePath();
}

QString batchBackup(const QString& folder, const std::function<bool()>& endRequested) {
    return failureOf([&] {
        const QString name = company::currentCompany().name;
        const QString file =
            QDir(folder).filePath(company::backupFileName(name, data::Clock::now()));
        const std::optional<company::Backup> backup = company::makeBackup(
            name, file,
            [&endRequested](company::BackupPhase, qint64, qint64) { return !endRequested(); });
        if (!backup)
            return QStringLiteral("ohjelmaa pyydettiin lopettamaan");
        company::writeGeneralLog(QStringLiteral("Varmuuskopio otettu ja tarkastettu: ") +
                                 QDir::toNativeSeparators(backup->file));
        return QString();
    });
}

QString batchReport(const std::vector<qint64>& runs, const QStringList& notes) {
    return failureOf([&] {
        data::Database& database = company::companyDatabase();
        vatchange::ReportContext context;
        context.company = company::currentCompany().name;
        context.logName = QFileInfo(company::AlvMuutosLogName()).absoluteFilePath();
        context.notes = notes;
        const QString title = QStringLiteral("Eräajo");
        if (runs.empty())
            context.title = title + QStringLiteral(": mitään ei ajettu");
        const QString name = runs.empty() ? vatchange::reportFileName(data::Clock::now(), title)
                                          : vatchange::reportFileName(database, runs);
        const QString file = QDir(reportFolder()).filePath(name);
        vatchange::writeRunReport(database, runs, context, file);
        company::writeGeneralLog(QStringLiteral("Raportti: ") + QDir::toNativeSeparators(file));
        return QString();
    });
}

}  // namespace shell
