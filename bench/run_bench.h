#pragma once

#include <QDir>
#include <cstdio>

#include "data/sql/uni_query.h"
#include "engines/embedded/embedded_database.h"
#include "vatchange/run/change_run.h"

namespace bench {

/// Ports of a run that nobody watches: only messages go to standard error.
class SilentPorts : public vatchange::RunPorts {
  public:
    bool unattended() const override { return true; }
    void NaytaViesti(const QString& text) override {
        std::fprintf(stderr, "%s\n", qPrintable(text));
    }
    void showMessage(const QString&) override {}
    bool ask(const QString&) override { return false; }
    void log(const QString&) override {}
    void status(const QString&) override {}
    void progress(qint64, qint64) override {}
    void processEvents() override {}
    bool cancelled() const override { return false; }
    QString programFileName() const override { return QStringLiteral("bench"); }
    QString definitionName() const override { return QStringLiteral("bench"); }
    bool skipEarlyDateCheck() const override { return true; }
};

/// @return number of affected rows.
inline qint64 exec(data::Database& database, const QString& sql) {
    data::TUniQuery query(&database);
    query.sql().setText(sql);
    return query.execSql();
}

/// Creates a company anew with products of nine price levels that carry class 1.
inline void makeCompany(const QString& folder, int products) {
    QDir(folder).removeRecursively();
    engines::createEmbedded(folder, data::allTableSources());
    const auto company = engines::openEmbedded(QStringLiteral("KOE"), folder);
    exec(*company, QStringLiteral("insert into ALVKANTA (luokka, Prosentti) values (1, 24)"));
    exec(*company, QStringLiteral("insert into ALVKANTA (luokka, Prosentti) values (5, 25.5)"));
    data::TUniQuery insert(company.get());
    insert.sql().setText(QStringLiteral(
        "insert into TUOTE (NUMERO, NIMI, LVV, OSTOVERO, HINTA, KAKSOISHINTA, HINTA3, HINTA4, "
        "HINTA5, HINTA6, HINTA7, HINTA8, HINTA9) values (:n, :nimi, 1, 1, :h, :h + 1, :h + 2, "
        ":h + 3, :h + 4, :h + 5, :h + 6, :h + 7, :h + 8)"));
    company->inTransaction([&] {
        for (int i = 0; i < products; ++i) {
            const QString number = QString::number(100000 + i);
            insert.paramByName(QStringLiteral("n")).setString(number);
            insert.paramByName(QStringLiteral("nimi")).setString(QStringLiteral("Tuote ") + number);
            insert.paramByName(QStringLiteral("h")).setFloat(1.0 + i % 977 * 0.13);
            insert.execSql();
        }
    });
}

/// Class 1 to class 5, 24 to 25.5 percent on all nine levels.
inline vatchange::ChangeDefinition nineLevels() {
    vatchange::ChangeDefinition definition;
    definition.sourceClass = 1;
    definition.targetClass = 5;
    for (size_t i = 0; i < definition.levels.size(); ++i)
        definition.levels[i] = {1.0120967741935485, vatchange::kPriceColumns[i + 1], false};
    return definition;
}

}  // namespace bench
