#include "tools/zavdb/unfinished_runs.h"

#include "company/company.h"
#include "company/unfinished_note.h"
#include "data/engine/run_journal.h"
#include "tools/zavdb/command.h"

namespace tools {

void requireNoUnfinishedRun(data::Database& database, const QString& company, const QString& what) {
    const auto refuse = [&](qint64 run) {
        throw CommandError(
            QStringLiteral("Company \"%1\" cannot %2: its run %3 is unfinished. Resume, undo or "
                           "accept it (\"zavdb runs\"), or give --force.")
                .arg(company, what)
                .arg(run));
    };
    company::takeIntoUse(company);
    if (!company::readUnfinishedNotes().empty())
        refuse(0);
    data::RunJournal* journal = database.journal();
    if (journal == nullptr)
        return;
    for (const data::JournalRun& run : journal->runs()) {
        if (data::isUnfinished(run.state) || run.state == data::RunState::Running)
            refuse(run.number);
    }
}

}  // namespace tools
