#include <QFile>
#include <cstdio>

#include "company/company.h"
#include "company/logs.h"
#include "company/unfinished_note.h"
#include "platform/csv.h"
#include "tools/zavdb/command.h"
#include "tools/zavdb/output_file.h"
#include "tools/zavdb/progress.h"
#include "tools/zavdb/run_changes.h"
#include "tools/zavdb/unfinished_runs.h"
#include "vatchange/journal/run_refused.h"
#include "vatchange/journal/run_upkeep.h"
#include "vatchange/journal/undo.h"
#include "vatchange/journal/verification_text.h"

namespace tools {

namespace {

const QString kExact = QStringLiteral("exact");
const QString kDryRun = QStringLiteral("dry-run");
const QString kTable = QStringLiteral("table");
const QString kKey = QStringLiteral("key");

/// Opens the company and makes it the current one, whose logs are written.
std::unique_ptr<data::Database> useCompany(const QString& name) {
    std::unique_ptr<data::Database> database = openCompany(name);
    company::takeIntoUse(name);
    return database;
}

qint64 runNumber(const Arguments& arguments) {
    bool ok = false;
    const qint64 run = arguments.at(1).toLongLong(&ok);
    if (!ok || run < 0)
        throw UsageError(
            QStringLiteral("A run has a whole number (\"zavdb runs\" shows it), not \"%1\".")
                .arg(arguments.at(1)));
    return run;
}

template <typename Action>
auto explained(Action&& action) {
    try {
        return action();
    } catch (const vatchange::RunRefused& refused) {
        throw CommandError(refused.english());
    }
}

void openStandardOutput(QFile& output) {
    if (!output.open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered))
        throw CommandError(QStringLiteral("Standard output cannot be written."));
}

int runs(const Arguments& arguments) {
    const std::unique_ptr<data::Database> database = useCompany(arguments.at(0));
    QFile output;
    openStandardOutput(output);
    writeRuns(*database, output);
    return 0;
}

int changes(const Arguments& arguments) {
    const qint64 run = runNumber(arguments);
    const std::unique_ptr<data::Database> database = openCompany(arguments.at(0));
    return explained([&] {
        if (arguments.count() == 2) {
            QFile output;
            openStandardOutput(output);
            writeChanges(*database, run, output);
            return 0;
        }
        const qint64 written = writeFile(arguments.at(2), [&](QIODevice& output) {
            return writeChanges(*database, run, output);
        });
        printLine(QStringLiteral("%1 exported.").arg(counted(written, QStringLiteral("change"))));
        return 0;
    });
}

/// Writes what is left as CSV, the header before the first line.
class ConsoleUndo : public vatchange::UndoPorts {
  public:
    explicit ConsoleUndo(bool dryRun) : m_dryRun(dryRun) { openStandardOutput(m_output); }

    void log(const QString& line) override { company::WriteAlvMuutosLog(line); }
    void webShopLog(const QString& line) override {
        company::writeLogLine(company::dataFolderFile(QStringLiteral("WEBKAUPPA.LOG")), line);
    }
    void conflict(const vatchange::UndoConflict& conflict) override {
        if (!std::exchange(m_any, true))
            write({kTable, kKey, QStringLiteral("field"), QStringLiteral("run"),
                   QStringLiteral("present"), QStringLiteral("reason")});
        write({conflict.table, conflict.key, conflict.field, conflict.after, conflict.present,
               reasonWord(conflict.reason)});
        if (!m_dryRun)
            log(QStringLiteral("Huomaa: perumisessa jätettiin ennalleen ") +
                QStringList{conflict.table, conflict.key, conflict.field, conflict.after,
                            conflict.present}
                    .join(u';'));
    }
    void progress(qint64 done, qint64 total) override {
        m_progress.show(QStringLiteral("undoing"), done, total);
    }

  private:
    static QString reasonWord(vatchange::UndoConflict::Reason reason) {
        using Reason = vatchange::UndoConflict::Reason;
        switch (reason) {
            case Reason::Changed:
                return QStringLiteral("changed");
            case Reason::Gone:
                return QStringLiteral("deleted");
            case Reason::Exists:
                return QStringLiteral("exists");
            case Reason::Order:
                return QStringLiteral("order changed");
            case Reason::Held:
                return QStringLiteral("locked");
        }
        return {};
    }

    void write(const QStringList& cells) {
        platform::CsvWriter writer(m_output);
        for (const QString& cell : cells)
            writer.add(cell);
        writer.endRecord();
        writer.flush();
    }

    const bool m_dryRun;
    bool m_any = false;
    QFile m_output;
    Progress m_progress;
};

vatchange::UndoOptions undoOptions(const Arguments& arguments) {
    vatchange::UndoOptions options;
    options.scope = {arguments.has(kExact), arguments.options.value(kTable).value(0).toUpper(),
                     arguments.options.value(kKey).value(0)};
    if (arguments.has(kKey) && !arguments.has(kTable))
        throw UsageError(QStringLiteral("--key needs --table."));
    for (const QString& option : {kTable, kKey})
        if (arguments.has(option) && arguments.options.value(option).value(0).isEmpty())
            throw UsageError(QStringLiteral("--%1 needs a value.").arg(option));
    options.dryRun = arguments.has(kDryRun);
    options.user = company::userName();
    options.computer = company::computerName();
    options.logSize = company::changeLogSize;
    return options;
}

QString undoSummary(qint64 run, const vatchange::UndoResult& result) {
    const QString records =
        counted(result.restored + result.removed + result.putBack, QStringLiteral("record"));
    QString text = result.run == 0
                       ? QStringLiteral("Run %1: %2 would be taken back").arg(run).arg(records)
                       : QStringLiteral("Run %1: %2 taken back in run %3")
                             .arg(run)
                             .arg(records)
                             .arg(result.run);
    if (result.conflicts > 0)
        text += QStringLiteral(", %1 left as changed since").arg(result.conflicts);
    if (result.held > 0)
        text +=
            QStringLiteral(", %1 locked by another program: repeat the command").arg(result.held);
    return text + u'.';
}

int undo(const Arguments& arguments) {
    const qint64 run = runNumber(arguments);
    const vatchange::UndoOptions options = undoOptions(arguments);
    const std::unique_ptr<data::Database> database = useCompany(arguments.at(0));
    vatchange::UndoResult result;
    {
        ConsoleUndo ports(options.dryRun);
        result = explained([&] { return vatchange::undoRun(*database, run, options, ports); });
    }
    if (!result.clean()) {
        printError(undoSummary(run, result));
        return 1;
    }
    printLine(undoSummary(run, result));
    return 0;
}

/// What an older version noted about a run that it did not finish.
void acceptNotes(const QString& company) {
    QFile note(company::unfinishedNoteName());
    if (!note.exists())
        throw CommandError(
            QStringLiteral("Company \"%1\" has no unfinished run of an older version.")
                .arg(company));
    if (!note.remove())
        throw CommandError(
            QStringLiteral("%1 cannot be removed: %2").arg(note.fileName(), note.errorString()));
}

int accept(const Arguments& arguments) {
    const qint64 run = runNumber(arguments);
    const std::unique_ptr<data::Database> database = useCompany(arguments.at(0));
    if (run == 0)
        acceptNotes(arguments.at(0));
    else
        explained([&] { vatchange::acceptRun(*database, run); });
    return 0;
}

int forget(const Arguments& arguments) {
    const qint64 run = runNumber(arguments);
    const std::unique_ptr<data::Database> database = openCompany(arguments.at(0));
    explained([&] { vatchange::forgetRun(*database, run, arguments.has(kForce)); });
    return 0;
}

int verify(const Arguments& arguments) {
    const qint64 run = runNumber(arguments);
    const std::unique_ptr<data::Database> database = openCompany(arguments.at(0));
    return explained([&] {
        vatchange::requireRun(vatchange::requireJournal(*database), run);
        const vatchange::Verification found = vatchange::verifyRun(*database, run);
        for (const QString& line : vatchange::verificationTextEnglish(found))
            printLine(line);
        return found.holds() ? 0 : 1;
    });
}

}  // namespace

std::vector<Command> runCommands() {
    const QString nameAndRun = QStringLiteral("NAME RUN");
    return {
        {QStringLiteral("runs"),
         QStringLiteral("NAME"),
         QStringLiteral("Lists the company's runs of changes and their undos as CSV"),
         QStringLiteral(
             "Oldest first. States: running, interrupted (its process died), stopped, incomplete "
             "(products or orders left behind), errors, done, accepted, partly undone, undone. "
             "interrupted, stopped and incomplete are unfinished. Run 0 is an unfinished run of an "
             "older version, which kept no journal."),
         1,
         1,
         {},
         runs},
        {QStringLiteral("changes"),
         QStringLiteral("NAME RUN [FILE.csv]"),
         QStringLiteral("Writes every change of a run as CSV"),
         QStringLiteral("An update has a line for each changed field, an insert or delete one for "
                        "each field that is not empty. Without a file to standard output."),
         2,
         3,
         {},
         changes},
        {QStringLiteral("undo"),
         nameAndRun,
         QStringLiteral("Takes back what a run changed"),
         QStringLiteral(
             "Fields that still hold what the run left get their value from before. What somebody "
             "has changed since stays and is listed as CSV, exit status 1; an order that was "
             "changed since stays whole. Dates of change become now; labels and web shop marks "
             "that were consumed are written again.\nThe undo is a run of its own: it can itself "
             "be undone, and the same command continues one that was interrupted."),
         2,
         2,
         {QCommandLineOption(kExact, QStringLiteral("Restores dates of change too, writes no "
                                                    "labels or marks.")),
          QCommandLineOption(kDryRun, QStringLiteral("Lists what would be left; changes nothing.")),
          QCommandLineOption(kTable, QStringLiteral("Only the changes of this table."),
                             QStringLiteral("T")),
          QCommandLineOption(kKey,
                             QStringLiteral("Only records of this key, written as in "
                                            "\"zavdb changes\"; with --table."),
                             QStringLiteral("K"))},
         undo},
        {QStringLiteral("accept-run"),
         nameAndRun,
         QStringLiteral("Leaves an unfinished run as it is; it counts as finished"),
         QStringLiteral("Run 0: the unfinished run of an older version."),
         2,
         2,
         {},
         accept},
        {QStringLiteral("verify"),
         nameAndRun,
         QStringLiteral("Compares the company with what a run left"),
         QStringLiteral("Exit status 1 when something is not as the run left it or was left "
                        "behind."),
         2,
         2,
         {},
         verify},
        {QStringLiteral("forget-run"),
         nameAndRun,
         QStringLiteral("Removes a run's journal; it can no longer be undone"),
         QString(),
         2,
         2,
         {QCommandLineOption(kForce, QStringLiteral("Also that of an unfinished run."))},
         forget},
    };
}

}  // namespace tools
