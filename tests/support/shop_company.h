#pragma once

#include "company/logs.h"
#include "platform/command_line.h"
#include "tests/support/test_company.h"

namespace test {

/// A small shop. VAT classes: 1 10 %, 2 14 %, 3 24 %, 6 25.5 %; customer groups 1, 2 and 5; no
/// products.
class ShopCompany : public TestCompany {
  public:
    explicit ShopCompany(const QStringList& parameters = {})
        : TestCompany({{1, 10}, {2, 14}, {3, 24}, {6, 25.5}}) {
        platform::setParameters(parameters);
        for (const char* group : {"1, 'Kuluttajat'", "2, 'Yritykset'", "5, 'Henkilökunta'"})
            exec(QStringLiteral("insert into ASRYHMA (Nro, Nimi) values (%1)")
                     .arg(QString::fromUtf8(group)));
    }
    ~ShopCompany() { platform::setParameters({}); }

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
};

}  // namespace test
