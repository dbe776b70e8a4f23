#include "vatchange/form/unfinished_question.h"

#include "company/logs.h"
#include "framework/ui/dialogs.h"
#include "vatchange/journal/history.h"
#include "vatchange/journal/repeated_rows.h"

namespace vatchange {

namespace {

enum class Answer { Resume, StartAnew, Leave };

const QStringList& answers() {
    static const QStringList kAnswers = {QStringLiteral("&Jatka ajoa"),
                                         QStringLiteral("&Aloita alusta"),
                                         QStringLiteral("Ä&lä tee mitään")};
    return kAnswers;
}

QString question(data::RunJournal& journal, const data::JournalRun& run) {
    const QString done = changedRecordsText(changedRecords(journal, run.number));
    return QStringLiteral("Tällä määrittelyllä on keskeneräinen %1.\r").arg(runText(run)) +
           (done.isEmpty() ? QStringLiteral("Se ei ole muuttanut yhtään riviä.")
                           : QStringLiteral("Se on muuttanut rivejä: ") + done + u'.') +
           QStringLiteral(
               "\r\r\"Jatka ajoa\" tekee loput eikä muuta samoja rivejä uudestaan.\r"
               "\"Aloita alusta\" hyväksyy keskeneräisen ajon sellaisena kuin se on ja tekee "
               "uuden.");
}

bool agreesToRepeat(QWidget* parent, const std::vector<RepeatedRows>& rows) {
    if (rows.empty())
        return true;
    QString text =
        QStringLiteral("Alusta aloitettu ajo kertoisi uudestaan nämä jo kerrotut rivit:\r");
    for (const RepeatedRows& table : rows)
        text += u'\r' + repeatedRowsText({table});
    return framework::Dialogs::ask(parent, text + QStringLiteral("\r\rAloitetaanko silti alusta?"));
}

}  // namespace

std::optional<RunOptions> askAboutUnfinished(QWidget* parent, data::Database& database,
                                             const QString& name,
                                             const ChangeDefinition& definition) {
    data::RunJournal* journal = database.journal();
    if (journal == nullptr)
        return RunOptions{};
    const std::optional<data::JournalRun> run = unfinishedRun(*journal, name, definition);
    if (!run)
        return RunOptions{};
    switch (static_cast<Answer>(
        framework::Dialogs::choose(parent, question(*journal, *run), answers()))) {
        case Answer::Resume:
            return RunOptions{run->number, 0};
        case Answer::StartAnew:
            break;
        case Answer::Leave:
            return std::nullopt;
    }
    if (!agreesToRepeat(parent, repeatedRows(database, run->number, definition)))
        return std::nullopt;
    journal->setState(run->number, data::RunState::Accepted);
    company::WriteAlvMuutosLog(
        QStringLiteral("Huomaa: %1 hyväksyttiin sellaisena kuin se on").arg(runText(*run)));
    return RunOptions{};
}

}  // namespace vatchange
