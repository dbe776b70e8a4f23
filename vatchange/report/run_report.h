#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

#include "data/engine/engine.h"
#include "framework/ui/pdf_report.h"

namespace vatchange {

/// What a report of runs tells besides what their journal knows.
struct ReportContext {
    QString company;
    QString logName;           ///< full path of the change log that the runs wrote to
    QString title = {};        ///< empty: from the runs' definitions
    QStringList notes = {};    ///< shown first: definitions of a batch that were refused
    bool onNewPage = false;    ///< follows something else
    bool verifyAgain = false;  ///< verifies now instead of showing the stored verification
    /// Gets the share done (0 to 1) a few times a second; false cancels.
    std::function<bool(double)> progress = {};
};

/// The report of a run, or of the runs of a batch in their order: summary, changed records,
/// pictures, findings, what was passed over and why, verification, definition, and the log lines of
/// each run. Undos and unfinished runs too. Needs a QGuiApplication (any platform), no window.
/// @return nothing if `progress` cancelled.
/// @throws RunRefused (there is no such run), data::DataError.
std::optional<framework::Report> runReport(data::Database& database,
                                           const std::vector<qint64>& runs,
                                           const ReportContext& context);

/// Writes runReport() as a PDF; makes the file's folder if it is missing.
/// @return false if `progress` cancelled. @throws as runReport(); no file is left then.
bool writeRunReport(data::Database& database, const std::vector<qint64>& runs,
                    const ReportContext& context, const QString& fileName);

/// "2024-09-01 003000 Alv 24 - 25,5.pdf": what reports are called in the company's folder RAPORTIT.
QString reportFileName(const QDateTime& started, const QString& title);
/// The same for runs of the journal. @throws RunRefused, data::DataError.
QString reportFileName(data::Database& database, const std::vector<qint64>& runs);

}  // namespace vatchange
