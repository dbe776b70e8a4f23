#include "vatchange/journal/history.h"

#include <algorithm>
#include <map>

#include "vatchange/journal/run_notes.h"

namespace vatchange {

QString stateName(data::RunState state) {
    switch (state) {
        case data::RunState::Running:
            return QStringLiteral("käynnissä");
        case data::RunState::Interrupted:
            return QStringLiteral("kesken");
        case data::RunState::Stopped:
            return QStringLiteral("keskeytetty");
        case data::RunState::Incomplete:
            return QStringLiteral("vajaa");
        case data::RunState::Errors:
            return QStringLiteral("virheitä");
        case data::RunState::Done:
            return QStringLiteral("valmis");
        case data::RunState::Accepted:
            return QStringLiteral("hyväksytty");
        case data::RunState::PartlyUndone:
            return QStringLiteral("osin peruttu");
        case data::RunState::Undone:
            break;
    }
    return QStringLiteral("peruttu");
}

QString runText(const data::JournalRun& run) {
    QString text = QStringLiteral("ajo %1 (").arg(run.number);
    if (!run.definition.isEmpty())
        text += QStringLiteral("määrittely ") + run.definition + QStringLiteral(", ");
    return text + run.started.toString(QStringLiteral("dd.MM.yyyy hh:mm:ss")) +
           QStringLiteral(", ") + stateName(run.state) + u')';
}

std::optional<data::JournalRun> unfinishedRun(data::RunJournal& journal, const QString& name,
                                              const ChangeDefinition& definition) {
    const std::vector<data::JournalRun> runs = journal.runs();
    const QByteArray values = definitionNote(definition);
    const auto found = std::find_if(runs.rbegin(), runs.rend(), [&](const data::JournalRun& run) {
        return run.kind == data::RunKind::Change && data::isUnfinished(run.state) &&
               run.definition.compare(name, Qt::CaseInsensitive) == 0 &&
               journal.note(run.number, kDefinitionNote) == values;
    });
    if (found == runs.rend())
        return std::nullopt;
    return *found;
}

std::vector<ChangedRecords> changedRecords(data::RunJournal& journal, qint64 run) {
    const std::vector<data::JournalTable> tables = journal.tables(run);
    std::vector<std::vector<data::RecordId>> records(tables.size());
    journal.visit(run, data::Direction::Forward, [&records](const data::JournalEntry& entry) {
        if (!entry.isMark)
            records.at(static_cast<size_t>(entry.table)).push_back(entry.record);
        return true;
    });
    std::vector<ChangedRecords> counts;
    for (size_t i = 0; i < tables.size(); ++i) {
        std::sort(records[i].begin(), records[i].end());
        const auto end = std::unique(records[i].begin(), records[i].end());
        if (end != records[i].begin())
            counts.push_back({tables[i].name, end - records[i].begin()});
    }
    return counts;
}

QString tableText(const QString& table) {
    static const std::map<QString, QString> kTexts = {
        {QStringLiteral("ASALE"), QStringLiteral("asiakashinnastojen rivit")},
        {QStringLiteral("KAMPPANJA"), QStringLiteral("kampanjarivit")},
        {QStringLiteral("VAKIOLASKUTUS"), QStringLiteral("toistuvaislaskutuksen rivit")},
        {QStringLiteral("MAARAALE"), QStringLiteral("määräalennukset")},
        {QStringLiteral("MYYMALAHINNAT"), QStringLiteral("myymälähintojen rivit")},
        {QStringLiteral("TRYHMA"), QStringLiteral("tuoteryhmät")},
        {QStringLiteral("TUOTE"), QStringLiteral("tuotteet")},
        {QStringLiteral("HR"), QStringLiteral("hyllynreunaetiketit")},
        {QStringLiteral("WEBKLIITOS"), QStringLiteral("verkkokaupan muutosmerkinnät")},
        {QStringLiteral("MT"), QStringLiteral("myyntitilaukset")},
        {QStringLiteral("MTRIVI"), QStringLiteral("myyntitilausten rivit")},
        {QStringLiteral("WINOT"), QStringLiteral("ostotilaukset")},
        {QStringLiteral("WINOTRI"), QStringLiteral("ostotilausten rivit")},
        {QStringLiteral("INI"), QStringLiteral("ajomerkintä")}};
    const auto known = kTexts.find(table.toUpper());
    return known == kTexts.end() ? table : known->second;
}

QString changedRecordsText(const std::vector<ChangedRecords>& tables) {
    QStringList texts;
    for (const ChangedRecords& table : tables)
        texts += tableText(table.table) + u' ' + QString::number(table.records);
    return texts.join(QStringLiteral(", "));
}

}  // namespace vatchange
