#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <map>
#include <memory>

#include "company/logs.h"
#include "data/engine/engine.h"
#include "tests/support/recording_ports.h"
#include "tests/support/test_company.h"
#include "vatchange/definition/change_definition.h"
#include "vatchange/run/change_run.h"

namespace test {

/// Every record of every table: bytes by table and the engine's address.
using Records = std::map<QString, std::map<data::RecordId, QByteArray>>;

/// Size of a company with data for every step of a run.
struct FullCompanySize {
    int products = 6;  ///< all of class 3; every third in the web shop, every second with labels
    int orders = 2;    ///< sales and purchase orders, of three rows each
};

/// Makes the company's database in a folder. VAT classes: 3 24 %, 6 25.5 %.
void makeFullCompany(const QString& folder, const FullCompanySize& size = {});
/// Copies the database of a company that no connection uses.
void copyCompany(const QString& from, const QString& to);
/// Registers the folder's company and takes it into use.
void useCompany(const QString& folder);
std::unique_ptr<data::Database> openCompany(const QString& folder);
Records readCompany(const QString& folder);
/// Runs fullDefinition(): resumes the company's last run, or begins one if it has none. A run that
/// is done is not made again; the result is then clean.
vatchange::RunResult runOrResume(data::Database& database, vatchange::RunPorts& ports);
/// The first table that has other records in one than in the other, their addresses aside; empty if
/// there is none.
QString differingTable(const Records& left, const Records& right);

/// All steps, class 3 to 6, everything by 25.5/24 %.
vatchange::ChangeDefinition fullDefinition();

/// Ports that also write the change log file, as the program does.
class LoggingPorts : public RecordingPorts {
  public:
    LoggingPorts() { program = QStringLiteral("taksavaihe"); }
    void NaytaViesti(const QString& text) override {
        RecordingPorts::NaytaViesti(text);
        company::WriteAlvMuutosLog(text);
    }
    void log(const QString& line) override {
        RecordingPorts::log(line);
        company::WriteAlvMuutosLog(line);
    }
};

/// Values of a field by the text of key 0's first field.
std::map<QString, double> fieldByKey(data::Database& database, const QString& table,
                                     const QString& field);

/// The number in an environment variable, or the default.
int countFrom(const char* variable, int byDefault);
/// TAKSAVAIHE_SEED, else a new one.
unsigned seedOfTest();

}  // namespace test
