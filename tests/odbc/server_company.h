#pragma once

#include "data/lock/lock_file.h"
#include "engines/shops/separate_journal.h"
#include "tests/odbc/sql_drivers.h"

namespace test {

/// A company on a server of SqlEngine with row numbers: SQL in one session, records in another, and
/// the shops' engine's run journal in a folder. The address of a record is its row number.
class ServerCompany : public OdbcDatabase {
  public:
    /// `shapes`: folder of an embedded company with the tables' layouts and keys.
    ServerCompany(const engines::shops::OdbcSettings& settings, const QString& shapes,
                  const QString& journalFolder);

    std::unique_ptr<data::TableFile> openTable(const QString& tableName) override;
    std::unique_ptr<data::SqlStatement> prepare(const QString& sql) override;
    data::RunJournal* journal() override { return &m_journal; }
    void setLockWait(std::chrono::milliseconds wait) override;
    bool statementsPassRecordLocks() const override { return false; }
    bool beginRun() override { return m_lock.beginRun(); }
    void endRun() override { m_lock.endRun(); }

  private:
    std::unique_ptr<data::TableFile> plainTable(const QString& name);

    std::unique_ptr<engines::shops::OdbcConnection> m_records;
    std::unique_ptr<data::Database> m_shapes;
    data::LockFile m_lock;
    engines::shops::SeparateJournal m_journal;
};

}  // namespace test
