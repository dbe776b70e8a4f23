#include <QFile>
#include <cstdio>

#include "tools/zavdb/command.h"
#include "tools/zavdb/output_file.h"
#include "tools/zavdb/sequential_transfer.h"
#include "tools/zavdb/table_export.h"
#include "tools/zavdb/table_import.h"
#include "tools/zavdb/unfinished_runs.h"

namespace tools {

namespace {

const QString kReplace = QStringLiteral("replace");

int importRows(const Arguments& arguments) {
    const std::unique_ptr<data::Database> database = openCompany(arguments.at(0));
    if (arguments.has(kReplace) && !arguments.has(kForce))
        requireNoUnfinishedRun(*database, arguments.at(0), QStringLiteral("have a table replaced"));
    const qint64 rows =
        importTable(*database, arguments.at(1), arguments.at(2), arguments.has(kReplace));
    printLine(QStringLiteral("%1 imported.").arg(counted(rows, QStringLiteral("row"))));
    return 0;
}

int exportRows(const Arguments& arguments) {
    const std::unique_ptr<data::Database> database = openCompany(arguments.at(0));
    const std::unique_ptr<data::TableFile> records = openTable(*database, arguments.at(1));
    if (arguments.count() == 2) {
        QFile output;
        if (!output.open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered))
            throw CommandError(QStringLiteral("Standard output cannot be written."));
        exportTable(*records, output);
        return 0;
    }
    const qint64 rows = writeFile(arguments.at(2),
                                  [&](QIODevice& output) { return exportTable(*records, output); });
    printLine(QStringLiteral("%1 exported.").arg(counted(rows, QStringLiteral("row"))));
    return 0;
}

int loadRecords(const Arguments& arguments) {
    const std::unique_ptr<data::Database> database = openCompany(arguments.at(0));
    const LoadResult result = loadTable(*database, arguments.at(1), arguments.at(2));
    printLine(QStringLiteral("%1 loaded%2.")
                  .arg(counted(result.records, QStringLiteral("record")),
                       result.hasEndMark ? QString()
                                         : QStringLiteral("; the file has no end mark, so it may "
                                                          "have lost records at its end")));
    return 0;
}

int saveRecords(const Arguments& arguments) {
    const std::unique_ptr<data::Database> database = openCompany(arguments.at(0));
    const std::unique_ptr<data::TableFile> records = openTable(*database, arguments.at(1));
    const qint64 saved =
        writeFile(arguments.at(2), [&](QIODevice& output) { return saveTable(*records, output); });
    printLine(QStringLiteral("%1 saved.").arg(counted(saved, QStringLiteral("record"))));
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
         {QCommandLineOption(kReplace, QStringLiteral("Empties the table first.")),
          QCommandLineOption(kForce,
                             QStringLiteral("With --replace: although a run is unfinished."))},
         importRows},
        {QStringLiteral("export"),
         QStringLiteral("NAME TABLE [FILE.csv]"),
         QStringLiteral("Writes every field of a table as CSV, rows in the order of key 0"),
         QStringLiteral("Without a file the rows go to standard output. What \"import --replace\" "
                        "reads back gives the same file again.\nA file that exists is replaced "
                        "when the new one is whole; a device or pipe is written into."),
         2,
         3,
         {},
         exportRows},
        {QStringLiteral("load"),
         QStringLiteral("NAME TABLE FILE"),
         QStringLiteral("Appends the records of a sequential file to a table, byte for byte"),
         QStringLiteral(
             "The file is an unformatted one of the record engine's maintenance utility: for each "
             "record its length in digits, a comma, its bytes and a line end; 0x1A ends the file. "
             "A record has the table's record length; where the last field is a NOTE or LVAR area "
             "it may end within that. An auto-increment number of 0 asks for the next one.\nAn "
             "error names the file, record and byte (and the key that has its value already), and "
             "then nothing has changed. \"zavdb check\" tells of fields that hold no sense."),
         3,
         3,
         {},
         loadRecords},
        {QStringLiteral("save"),
         QStringLiteral("NAME TABLE FILE"),
         QStringLiteral("Writes the records of a table into a sequential file, byte for byte"),
         QStringLiteral("In the order of key 0, each record in its full length. \"zavdb load\" and "
                        "the record engine's maintenance utility read the file."),
         3,
         3,
         {},
         saveRecords},
    };
}

}  // namespace tools
