#include "shell/batch_progress.h"

#include <algorithm>

#include "company/company.h"
#include "data/error.h"
#include "vatchange/journal/history.h"

namespace shell {

namespace {

QStringList unfinishedNames(const vatchange::Batch& batch) {
    QStringList names;
    for (const vatchange::BatchDefinition& definition : batch.definitions) {
        if (!definition.finished)
            names += definition.name;
    }
    return names;
}

std::optional<vatchange::Batch> storedBatch(const BatchPorts& ports) {
    data::RunJournal* journal = ports.database->journal();
    return journal == nullptr ? std::nullopt : vatchange::readBatch(*journal);
}

}  // namespace

bool BatchProgress::unfinished(const BatchPorts& ports) {
    const std::optional<vatchange::Batch> batch = storedBatch(ports);
    return batch && !batch->isFinished();
}

BatchProgress::BatchProgress(const BatchPorts& ports, const QStringList& names) : m_ports(ports) {
    for (const QString& name : names)
        m_batch.definitions.push_back({name, ports.values(name)});
    std::optional<vatchange::Batch> earlier = storedBatch(ports);
    if (!earlier || earlier->isFinished())
        return;
    m_continues = earlier->sameDefinitions(m_batch);
    if (m_continues) {
        m_batch = *std::move(earlier);
        ports.changeLog(QStringLiteral("Jatketaan keskeytynyttä ajoa: eräajosta on jäljellä ") +
                        unfinishedNames(m_batch).join(QStringLiteral(", ")));
        return;
    }
    m_refusal = editedProblem(*earlier);
    if (!m_refusal.isEmpty())
        return;
    ports.changeLog(QStringLiteral("Huomaa: aiempaa eräajoa ei jatketa, koska sen luetteloa tai "
                                   "määrittelyä on muutettu; siitä jäi ajamatta ") +
                    unfinishedNames(*earlier).join(QStringLiteral(", ")));
    vatchange::removeBatch(*ports.database->journal());
}

void BatchProgress::begin() {
    data::RunJournal* journal = m_ports.database->journal();
    if (journal == nullptr || m_batch.definitions.empty())
        return;
    m_batch = vatchange::newBatch(*journal, std::move(m_batch.definitions));
    vatchange::storeBatch(*journal, m_batch);
}

// Empty if the earlier batch makes way for the new one: the user has asked for that with "/U", or
// has accepted or undone the runs that it left unfinished.
QString BatchProgress::editedProblem(const vatchange::Batch& earlier) const {
    const QString edited = QStringLiteral(
        "Virhe: keskeytynyttä eräajoa ei jatketa, koska sen luetteloa tai määrittelyä on muutettu. "
        "Palauta ne ennalleen");
    bool settled = false;
    for (const data::JournalRun& run : m_ports.database->journal()->runs()) {
        const bool ofBatch =
            std::any_of(earlier.definitions.begin(), earlier.definitions.end(),
                        [&run](const auto& definition) { return definition.run == run.number; });
        if (!ofBatch)
            continue;
        if (data::isUnfinished(run.state)) {
            const QString company = company::currentCompany().name;
            return edited + QStringLiteral(", tai jatka, peru tai hyväksy ") +
                   vatchange::runText(run) +
                   QStringLiteral(
                       " (lomakkeelta, zavdb undo \"%1\" %2 tai zavdb accept-run \"%1\" "
                       "%2).")
                       .arg(company)
                       .arg(run.number);
        }
        settled = settled || run.state == data::RunState::Accepted ||
                  run.state == data::RunState::PartlyUndone || run.state == data::RunState::Undone;
    }
    if (settled || m_ports.runAnyway)
        return {};
    return edited +
           QStringLiteral(", tai aja uusi luettelo alusta valitsimella /U. Ajamatta jäi ") +
           unfinishedNames(earlier).join(QStringLiteral(", ")) + u'.';
}

const BatchProgress::Definition* BatchProgress::next() {
    while (m_tried < m_batch.definitions.size() && m_batch.definitions[m_tried].finished)
        ++m_tried;
    if (m_tried == m_batch.definitions.size())
        return nullptr;
    vatchange::BatchDefinition& definition = m_batch.definitions[m_tried];
    if (definition.run == 0) {
        // as it is loaded now
        const QByteArray values = m_ports.values(definition.name);
        if (values != definition.values) {
            definition.values = values;
            store();
        }
    }
    m_current = {definition.name, definition.run};
    return &m_current;
}

void BatchProgress::refused() {
    m_batch.definitions[m_tried++].finished = true;
    store();
}

void BatchProgress::ended(const vatchange::RunResult& result) {
    vatchange::BatchDefinition& definition = m_batch.definitions[m_tried++];
    if (result.run != 0) {
        definition.run = result.run;
        definition.finished = !data::isUnfinished(result.state);
    } else {
        // refused; one that waits for another run, or for its own resumption, is tried again
        definition.finished = definition.run == 0 && !result.blocked;
    }
    store();
}

std::vector<qint64> BatchProgress::runs() const {
    std::vector<qint64> runs;
    for (const vatchange::BatchDefinition& definition : m_batch.definitions) {
        if (definition.run != 0)
            runs.push_back(definition.run);
    }
    return runs;
}

void BatchProgress::store() {
    data::RunJournal* journal = m_ports.database->journal();
    if (journal == nullptr)
        return;
    try {
        if (m_batch.isFinished())
            vatchange::removeBatch(*journal);
        else
            vatchange::storeBatch(*journal, m_batch);
    } catch (const data::DataError& error) {
        m_stored = false;
        m_ports.changeLog(kErrorPrefix + error.finnish());
    }
}

}  // namespace shell
