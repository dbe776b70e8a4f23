#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <map>
#include <memory>

#include "data/clock.h"
#include "data/engine.h"
#include "tests/support/recording_ports.h"
#include "vatchange/run/change_run.h"

namespace test {

/// The coefficient from 24 to 25.5 percent.
inline constexpr double k24To25_5 = 1.0120967741935485;

/// A company of its own in a temporary folder, taken into use as the current one, at half past six
/// on the morning of the change. VAT classes: 2 14 %, 3 24 %, 6 25.5 %, 7 24 %, 8 13.7 %, 9 0 %.
class RunCompany {
  public:
    explicit RunCompany(const QStringList& withoutTables = {});

    data::Database& database() { return *m_database; }
    /// A second connection, as another program would have it.
    std::unique_ptr<data::Database> otherProgram() const;
    QString folder() const { return m_folder.path(); }

    qint64 exec(const QString& sql);
    /// First column of the first row; an invalid value when there is no row.
    data::Value cell(const QString& sql);
    double number(const QString& sql) { return cell(sql).toDouble(); }
    QString text(const QString& sql) { return cell(sql).toString(); }
    /// The records of every table, byte for byte.
    std::map<QString, QList<QByteArray>> everything();

    void setNow(const QDateTime& now) { m_now = now; }
    vatchange::RunResult run(const vatchange::ChangeDefinition& definition);

    RecordingPorts ports;

  private:
    QTemporaryDir m_folder;
    QDateTime m_now;
    data::Clock::Override m_clock;
    std::unique_ptr<data::Database> m_database;
};

/// Product A1 with customer price and campaign rows that share the columns of their UPDATE's WHERE,
/// and the definition that changes them (with plainDefinition's coefficient).
vatchange::ChangeDefinition addSharedKeys(RunCompany& company);
/// Holds the rows against what was worked out by hand. `before`: everything() before the run.
void expectSharedKeysChanged(RunCompany& company,
                             const std::map<QString, QList<QByteArray>>& before);

/// Class 3 to 6, level 1 from its own column by 25.5/24 %; nothing but products.
vatchange::ChangeDefinition plainDefinition();

}  // namespace test
