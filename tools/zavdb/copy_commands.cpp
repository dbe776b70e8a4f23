#include "company/registration.h"
#include "tools/zavdb/command.h"
#include "tools/zavdb/company_copy.h"
#include "tools/zavdb/unfinished_runs.h"

namespace tools {

namespace {

int copy(const Arguments& arguments) {
    company::requireFreeName(arguments.at(1));  // before contacting the source's server
    const std::unique_ptr<data::Database> source = openCompany(arguments.at(0));
    if (!arguments.has(kForce))
        requireNoUnfinishedRun(*source, arguments.at(0), QStringLiteral("be copied"));
    const CopyResult result =
        copyCompany(*source, companyFolder(arguments.at(0)), arguments.at(1), arguments.at(2));
    for (const QStringList& lines : {result.notes, result.differences, result.findings})
        for (const QString& line : lines)
            printLine(line);
    if (!result.differences.isEmpty()) {
        printError(
            QStringLiteral("The copy differs from \"%1\", which somebody changed meanwhile: it was "
                           "not finished. The same command copies the tables concerned anew.")
                .arg(arguments.at(0)));
        return 1;
    }
    if (result.tables > 0)
        printLine(QStringLiteral("%1, %2: copied and compared.")
                      .arg(counted(result.tables, QStringLiteral("table")),
                           counted(result.records, QStringLiteral("record"))));
    if (!result.findings.isEmpty()) {
        printError(QStringLiteral("The copy is whole and registered; \"zavdb check\" has %1 in it.")
                       .arg(counted(result.findings.size(), QStringLiteral("finding"))));
        return 1;
    }
    return 0;
}

}  // namespace

std::vector<Command> copyCommands() {
    return {
        {QStringLiteral("copy"),
         QStringLiteral("SOURCE TARGET DIR"),
         QStringLiteral("Copies a company into a new embedded one in folder DIR, named TARGET"),
         QStringLiteral(
             "SOURCE is a registered company of any engine; nobody should change it meanwhile. "
             "Every table of its catalogue is copied, byte for byte, with its layout and keys, and "
             "its definitions and INI files as far as they can be read; the copy has no runs. At "
             "the end all records are "
             "compared and the copy is checked like \"zavdb check\".\nA copy that was stopped goes "
             "on where it was when the command is repeated; until then it lies in the hidden "
             "folder %1 inside DIR. Exit status 1 when something differs (then nothing is "
             "registered) or when the check finds something.")
             .arg(kCopyFolder),
         3,
         3,
         {QCommandLineOption(kForce, QStringLiteral("Although a run of SOURCE is unfinished."))},
         copy},
    };
}

}  // namespace tools
