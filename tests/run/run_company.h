#pragma once

#include "tests/support/recording_ports.h"
#include "tests/support/test_company.h"
#include "vatchange/run/change_run.h"

namespace test {

/// The coefficient from 24 to 25.5 percent.
inline constexpr double k24To25_5 = 1.0120967741935485;

/// A company to run changes in. VAT classes: 2 14 %, 3 24 %, 6 25.5 %, 7 24 %, 8 13.7 %, 9 0 %.
class RunCompany : public TestCompany {
  public:
    explicit RunCompany(const QStringList& withoutTables = {})
        : TestCompany({{2, 14}, {3, 24}, {6, 25.5}, {7, 24}, {8, 13.7}, {9, 0}}, withoutTables) {}

    QString folder() const { return path(); }
    vatchange::RunResult run(const vatchange::ChangeDefinition& definition) {
        return vatchange::runChange(database(), definition, ports);
    }

    void execAll(std::initializer_list<const char*> statements) const {
        for (const char* sql : statements)
            exec(QString::fromUtf8(sql));
    }

    RecordingPorts ports;
};

/// Product A1 with customer price and campaign rows that share the columns of their UPDATE's WHERE,
/// and the definition that changes them (with plainDefinition's coefficient).
vatchange::ChangeDefinition addSharedKeys(RunCompany& company);
/// Class 3 to 6, level 1 from its own column by 25.5/24 %; nothing but products.
inline vatchange::ChangeDefinition plainDefinition() {
    vatchange::ChangeDefinition definition;
    definition.sourceClass = 3;
    definition.targetClass = 6;
    definition.levels[0] = {k24To25_5, QStringLiteral("hinta"), false};
    return definition;
}

}  // namespace test
