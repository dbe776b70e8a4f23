#pragma once

#include <gtest/gtest.h>

#include <QStringList>

#include "app/company/command_line.h"
#include "app/company/logs.h"
#include "data/clock.h"
#include "data/embedded/embedded_database.h"
#include "data/sql/uni_query.h"
#include "tests/support/company_folder.h"

namespace test {

/// A small shop in use as the current company, on the morning of the change. VAT classes: 1 10 %,
/// 2 14 %, 3 24 %, 6 25.5 %; customer groups 1, 2 and 5; no products.
class ShopCompany : public CompanyFolder {
  public:
    explicit ShopCompany(const QStringList& parameters = {})
        : m_clock([] { return QDateTime(QDate(2024, 9, 1), QTime(6, 30)); }) {
        company::setParameters(parameters);
        data::createEmbedded(path(), data::allTableSources());
        for (const char* sql : {"insert into ALVKANTA (luokka, Prosentti) values (1, 10)",
                                "insert into ALVKANTA (luokka, Prosentti) values (2, 14)",
                                "insert into ALVKANTA (luokka, Prosentti) values (3, 24)",
                                "insert into ALVKANTA (luokka, Prosentti) values (6, 25.5)",
                                "insert into ASRYHMA (Nro, Nimi) values (1, 'Kuluttajat')",
                                "insert into ASRYHMA (Nro, Nimi) values (2, 'Yritykset')",
                                "insert into ASRYHMA (Nro, Nimi) values (5, 'Henkilökunta')"})
            exec(QString::fromUtf8(sql));
    }
    ~ShopCompany() { company::setParameters({}); }

    data::Database& database() const { return company::companyDatabase(); }

    qint64 exec(const QString& sql) const {
        data::TUniQuery query(&database());
        query.sql().setText(sql);
        return query.execSql();
    }

    /// First column of the first row as text; empty when there is no row.
    QString cell(const QString& sql) const {
        data::TUniQuery query(&database());
        query.sql().setText(sql);
        query.open();
        return query.eof() ? QString() : query.fieldByName(query.fieldNames().first()).asString();
    }

    /// Products 1..count of class 3 at 10 euros.
    void addProducts(int count) const {
        database().inTransaction([&] {
            for (int i = 1; i <= count; ++i)
                exec(QStringLiteral("insert into TUOTE (NUMERO, HINTA, LVV) values ('%1', 10, 3)")
                         .arg(i));
        });
    }

    /// The change log's messages, without time and computer.
    QStringList logMessages() const {
        QStringList messages;
        for (const QString& line : QString::fromUtf8(fileBytes(company::AlvMuutosLogName()))
                                       .split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            messages.append(line.section(QStringLiteral("  "), 1));
        return messages;
    }

  private:
    data::Clock::Override m_clock;
};

}  // namespace test
