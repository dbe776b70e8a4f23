#include <QFile>
#include <QSaveFile>
#include <cstdio>

#include "tools/zavdb/command.h"
#include "tools/zavdb/table_export.h"
#include "tools/zavdb/table_import.h"

namespace tools {

namespace {

const QString kReplace = QStringLiteral("replace");

int importRows(const Arguments& arguments) {
    const std::unique_ptr<data::Database> database = openCompany(arguments.at(0));
    const qint64 rows =
        importTable(*database, arguments.at(1), arguments.at(2), arguments.has(kReplace));
    printLine(QStringLiteral("%1 imported.").arg(counted(rows, QStringLiteral("row"))));
    return 0;
}

int exportRows(const Arguments& arguments) {
    const std::unique_ptr<data::Database> database = openCompany(arguments.at(0));
    const std::unique_ptr<data::RecordFile> records = openTable(*database, arguments.at(1));
    if (arguments.count() == 2) {
        QFile output;
        if (!output.open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered))
            throw CommandError(QStringLiteral("Standard output cannot be written."));
        exportTable(*records, output);
        return 0;
    }
    const QString& fileName = arguments.at(2);
    QSaveFile output(fileName);
    if (!output.open(QIODevice::WriteOnly))
        throw CommandError(
            QStringLiteral("%1 cannot be written: %2").arg(fileName, output.errorString()));
    const qint64 rows = exportTable(*records, output);
    if (!output.commit())
        throw CommandError(
            QStringLiteral("%1 cannot be written: %2").arg(fileName, output.errorString()));
    printLine(QStringLiteral("%1 exported.").arg(counted(rows, QStringLiteral("row"))));
    return 0;
}

}  // namespace

std::vector<Command> transferCommands() {
    return {
        {QStringLiteral("import"),
         QStringLiteral("NAME TABLE FILE.csv"),
         QStringLiteral("Appends the rows of a CSV file to a table"),
         QStringLiteral(
             "The file is UTF-8 with a header row of field names, in any case and order; fields "
             "left out get their empty value. Dates are yyyy-mm-dd, times hh:mm:ss, timestamps "
             "yyyy-mm-dd hh:mm:ss, booleans 0 or 1, numbers have a decimal point and no grouping; "
             "an empty cell is the empty value.\nAn error names the file, line, field and value, "
             "and then nothing has changed."),
         3,
         3,
         {QCommandLineOption(kReplace, QStringLiteral("Empties the table first."))},
         importRows},
        {QStringLiteral("export"),
         QStringLiteral("NAME TABLE [FILE.csv]"),
         QStringLiteral("Writes every field of a table as CSV, rows in the order of key 0"),
         QStringLiteral("Without a file the rows go to standard output. What \"import --replace\" "
                        "reads back gives the same file again."),
         2,
         3,
         {},
         exportRows},
    };
}

}  // namespace tools
