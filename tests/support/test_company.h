#pragma once

#include <gtest/gtest.h>

#include <QDateTime>
#include <QStringList>
#include <map>
#include <memory>

#include "data/clock.h"
#include "engines/embedded/embedded_database.h"
#include "tests/support/company_folder.h"
#include "tests/support/sql.h"

namespace test {

/// Per cent by VAT class.
using VatRates = std::map<int, double>;

/// Creates a company's database with these VAT classes and no other rows.
inline void createCompany(const QString& folder, const VatRates& rates,
                          const QStringList& withoutTables = {}) {
    std::vector<data::TableSource> tables = data::allTableSources();
    std::erase_if(tables, [&withoutTables](const data::TableSource& table) {
        return withoutTables.contains(table.name, Qt::CaseInsensitive);
    });
    engines::createEmbedded(folder, tables);
    const auto database = engines::openEmbedded(QStringLiteral("Koeyritys"), folder);
    for (const auto& [vatClass, rate] : rates)
        exec(*database, QStringLiteral("insert into ALVKANTA (luokka, Prosentti) values (%1, %2)")
                            .arg(vatClass)
                            .arg(rate));
}

/// The morning of the change.
inline QDateTime changeMorning() {
    return QDateTime(QDate(2024, 9, 1), QTime(6, 30));
}

/// A company in a temporary folder, current during its lifetime, at half past six on the morning of
/// the change.
class TestCompany : public CompanyFolder {
  public:
    explicit TestCompany(const VatRates& rates, const QStringList& withoutTables = {})
        : m_now(changeMorning()), m_clock([this] { return m_now; }) {
        createCompany(path(), rates, withoutTables);
    }

    data::Database& database() const { return company::companyDatabase(); }
    /// A second connection, as of another program.
    std::unique_ptr<data::Database> otherProgram() const {
        return engines::openEmbedded(QStringLiteral("Koeyritys"), path());
    }

    qint64 exec(const QString& sql) const { return test::exec(database(), sql); }
    /// First row. No row fails the test.
    QString text(const QString& sql) const {
        const QStringList found = rows(database(), sql);
        EXPECT_FALSE(found.isEmpty()) << "no row: " << sql.toStdString();
        return found.value(0);
    }
    double number(const QString& sql) const { return text(sql).toDouble(); }
    /// The records of every table, byte for byte.
    std::map<QString, QList<QByteArray>> everything() const {
        std::map<QString, QList<QByteArray>> tables;
        for (const QString& name : database().tableNames()) {
            const auto file = database().openTable(name);
            for (const auto& record : file->fromEnd(0, data::Direction::Forward, 1000000))
                tables[name] += record.bytes;
        }
        return tables;
    }

    void setNow(const QDateTime& now) { m_now = now; }

  private:
    QDateTime m_now;
    data::Clock::Override m_clock;
};

}  // namespace test
