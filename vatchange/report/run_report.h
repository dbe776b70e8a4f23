#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <vector>

#include "data/engine/engine.h"
#include "framework/ui/pdf_report.h"

namespace vatchange {

/// What a report of runs tells besides what their journal knows.
struct ReportContext {
    QString company;
    QString logName;        ///< full path of the change log that the runs wrote to
    QString title = {};     ///< empty: from the runs' definitions
    QStringList notes = {}; ///< shown first: definitions that were refused, comparison with a rehearsal
    bool verifyAgain = false;  ///< verifies the runs now instead of showing their stored verification
};

/// The report of a run, or of the runs of a batch in their order: summary, definition, pictures,
/// changed records, findings, what was passed over and why, verification, and the log lines of
/// each run. Undos and unfinished runs too. Needs no window, but a QGuiApplication (any platform).
/// @throws data::DataError (Gone: there is no such run).
framework::Report runReport(data::Database& database, const std::vector<qint64>& runs,
                            const ReportContext& context);

/// Writes runReport() as a PDF; makes the file's folder if it is missing.
/// @throws data::DataError; no file is left then.
void writeRunReport(data::Database& database, const std::vector<qint64>& runs,
                    const ReportContext& context, const QString& fileName);

/// "2024-09-01 003000 Alv 24 - 25,5.pdf": what reports are called in the company's folder RAPORTIT.
QString reportFileName(const QDateTime& started, const QString& title);

}  // namespace vatchange
