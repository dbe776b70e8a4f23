#include "tests/run/run_company.h"

#include "app/company/aliases.h"
#include "app/company/company.h"
#include "data/embedded/embedded_database.h"
#include "data/sql/uni_query.h"

namespace test {

namespace {

const QString kName = QStringLiteral("Koeyritys");

}  // namespace

RunCompany::RunCompany(const QStringList& withoutTables)
    : m_now(QDate(2024, 9, 1), QTime(6, 30)), m_clock([this] { return m_now; }) {
    std::vector<data::TableSource> tables = data::allTableSources();
    std::erase_if(tables, [&withoutTables](const data::TableSource& table) {
        return withoutTables.contains(table.name, Qt::CaseInsensitive);
    });
    data::createEmbedded(folder(), tables);
    company::Alias alias;
    alias.name = kName;
    alias.physicalName = folder();
    company::storeAlias(alias);
    EXPECT_TRUE(company::takeIntoUse(kName));
    m_database = otherProgram();
    for (const auto& [vatClass, rate] : std::map<int, const char*>{
             {2, "14"}, {3, "24"}, {6, "25.5"}, {7, "24"}, {8, "13.7"}, {9, "0"}}) {
        exec(QStringLiteral("insert into ALVKANTA (luokka, Prosentti) values (%1, %2)")
                 .arg(vatClass)
                 .arg(QLatin1String(rate)));
    }
}

std::unique_ptr<data::Database> RunCompany::otherProgram() const {
    return data::openEmbedded(kName, folder());
}

qint64 RunCompany::exec(const QString& sql) {
    data::TUniQuery query(m_database.get());
    query.sql().add(sql);
    return query.execSql();
}

data::Value RunCompany::cell(const QString& sql) {
    data::TUniQuery query(m_database.get());
    query.sql().add(sql);
    query.open();
    if (query.eof()) {
        ADD_FAILURE() << "no row: " << sql.toStdString();
        return {};
    }
    return query.fieldByName(query.fieldNames().first()).value();
}

std::map<QString, QList<QByteArray>> RunCompany::everything() {
    std::map<QString, QList<QByteArray>> tables;
    for (const QString& name : m_database->tableNames()) {
        auto file = m_database->openTable(name);
        for (const auto& record : file->fromEnd(0, data::Direction::Forward, 1000000))
            tables[name] += record.bytes;
    }
    return tables;
}

vatchange::RunResult RunCompany::run(const vatchange::ChangeDefinition& definition) {
    return vatchange::runChange(*m_database, definition, ports);
}

vatchange::ChangeDefinition plainDefinition() {
    vatchange::ChangeDefinition definition;
    definition.sourceClass = 3;
    definition.targetClass = 6;
    definition.levels[0] = {k24To25_5, QStringLiteral("hinta"), false};
    return definition;
}

}  // namespace test
