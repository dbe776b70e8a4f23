#include "vatchange/run/run_context.h"

#include "vatchange/rules/selection.h"

namespace vatchange {

VatClasses VatClasses::read(data::Database& database) {
    data::TUniQuery query(&database);
    query.sql().add(kVatClassQuery);
    query.open();
    VatClasses classes;
    const auto& number = query.fieldByName(QStringLiteral("luokka"));
    const auto& rate = query.fieldByName(QStringLiteral("Prosentti"));
    for (; !query.eof(); query.next())
        classes.m_rates.emplace(number.asInteger(), rate.asFloat());
    return classes;
}

double VatClasses::ratePercent(qint64 vatClass) const {
    const auto found = m_rates.find(vatClass);
    return found == m_rates.end() ? 0.0 : found->second;
}

std::set<int> VatClasses::numbers() const {
    std::set<int> numbers;
    for (const auto& [number, rate] : m_rates)
        numbers.insert(static_cast<int>(number));
    return numbers;
}

RunContext::RunContext(data::Database& companyDatabase, const ChangeDefinition& change,
                       RunPorts& runPorts, RunResult& runResult)
    : database(companyDatabase),
      definition(change),
      ports(runPorts),
      result(runResult),
      prices(change),
      condition(selectionCondition(change)) {}

qint64& RunContext::changedRows(const QString& what) {
    for (ChangedRows& counter : result.changed) {
        if (counter.what == what)
            return counter.rows;
    }
    return result.changed.emplace_back(ChangedRows{what, 0}).rows;
}

void RunContext::skipProduct(const QString& number) {
    ports.log(QStringLiteral("Virhe tuotteen päivityksessä: ") + number +
              QStringLiteral(" tuotetta ei voi muokata"));
    ++result.skippedProducts;
    outcome.passedOver.insert(number);
    if (result.skippedNumbers.size() < RunResult::kListedProducts)
        result.skippedNumbers += number;
}

QString markErrorText(const std::exception& error) {
    const auto* dataError = dynamic_cast<const data::DataError*>(&error);
    if (dataError == nullptr || dataError->kind() != data::ErrorKind::Locked)
        return errorText(error);
    return dataError
        ->inFinnish({}, QStringLiteral("Merkintä jäi tekemättä. Ajon jatkaminen tekee sen."))
        .finnish();
}

QString stepErrorText(const std::exception& error) {
    const auto* dataError = dynamic_cast<const data::DataError*>(&error);
    if (dataError == nullptr || dataError->kind() != data::ErrorKind::Locked)
        return errorText(error);
    return dataError->inFinnish({}, QStringLiteral("Riviä ei muutettu, ja vaihe päättyi siihen."))
        .finnish();
}

bool RunContext::stopRequested() {
    ports.processEvents();
    if (ports.cancelled())
        result.cancelled = true;
    return result.cancelled;
}

void RunContext::setOrigin(qint64 origin) {
    if (journal)
        journal->setOrigin(origin);
}

void RunContext::mark(const QByteArray& text) {
    if (journal)
        journal->mark(text);
}

void RunContext::stop(const QString& cause) {
    result.cancelled = true;
    stopCause = cause;
}

}  // namespace vatchange
