#include "tests/orders/order_company.h"

#include "data/dictionary/dictionary_source.h"
#include "data/embedded/embedded_database.h"

namespace test {

OrderCompany::OrderCompany() {
    data::createEmbedded(m_folder.path(), data::allTableSources());
    m_database = otherProgram();
}

std::unique_ptr<data::Database> OrderCompany::otherProgram() const {
    return data::openEmbedded(QStringLiteral("Tilaus Oy"), m_folder.path());
}

void OrderCompany::add(const QString& table, const Fields& fields) {
    data::TtbTable records;
    records.setDatabase(m_database.get());
    records.setTableName(table);
    records.open();
    records.insert();
    for (const auto& [name, value] : fields)
        records.fieldByName(name).setValue(value);
    records.post();
}

void OrderCompany::addSalesRow(int order, int row, const Fields& more) {
    Fields fields{{"TilausNro", order},   {"RiviNro", row},  {"Verokanta", 3},
                  {"OstoVero", 3},        {"Maara", 4.0},    {"Toimitettava", 4.0},
                  {"Ahinta", 10.0},       {"Netto", 40.0},   {"AhintaAlv0", 8.0},
                  {"Ostohinta", 5.0},     {"Kate", 20.0},    {"KateAlv0", 16.0},
                  {"OstohintaAlv0", 4.0}, {"Teksti", "rivi"}};
    for (const auto& [name, value] : more)
        fields[name] = value;
    add("MTRIVI", fields);
}

void OrderCompany::addPurchaseRow(int order, int row, const Fields& more) {
    Fields fields{{"TilausNro", order}, {"RiviNro", row},   {"AlvLuokka", 3},
                  {"Tulematta", 4.0},   {"Maara", 4.0},     {"OstoHinta", 10.0},
                  {"Summa", 40.0},      {"Teksti", "rivi"}, {"OstoHintaAlv0", 9.0}};
    for (const auto& [name, value] : more)
        fields[name] = value;
    add("WINOTRI", fields);
}

double OrderCompany::number(const QString& table, const data::KeyValues& key,
                            const QString& field) {
    data::TtbTable records;
    records.setDatabase(m_database.get());
    records.setTableName(table);
    records.open();
    return records.findKey(key) ? records.fieldByName(field).asFloat() : qQNaN();
}

QByteArray OrderCompany::bytes(const QString& table, const data::KeyValues& key) {
    const auto found = m_database->openTable(table)->seek(0, data::SeekOp::Equal, key, 1);
    return found.empty() ? QByteArray() : found.front().bytes;
}

std::vector<QByteArray> OrderCompany::records(const QString& table) {
    std::vector<QByteArray> all;
    for (const data::StoredRecord& record :
         m_database->openTable(table)->fromEnd(0, data::Direction::Forward, 100000))
        all.push_back(record.bytes);
    return all;
}

vatchange::OrderPorts OrderCompany::ports() {
    vatchange::OrderPorts ports;
    ports.log = [this](const QString& line) { log += line; };
    ports.showMessage = [this](const QString& text) { messages += text; };
    ports.status = [this](const QString& text) { statuses += text; };
    ports.progress = [this](qint64 done, qint64 total) { progress.emplace_back(done, total); };
    ports.trace = [this](const QString& text) { traces += text; };
    ports.cancelled = [this] { return cancelAfter >= 0 && cancelAfter-- == 0; };
    ports.ratePercent = [](int vatClass) {
        static const std::map<int, double> rates{{2, 14}, {3, 24}, {4, 25.5}, {5, 25}};
        const auto found = rates.find(vatClass);
        return found == rates.end() ? 0.0 : found->second;
    };
    return ports;
}

}  // namespace test
