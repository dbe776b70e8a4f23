#pragma once

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <stdexcept>

#include "engines/shops/shops_tables.h"

namespace test {

/// The databases listed for the fake client during its lifetime.
class FakeDatabases {
  public:
    FakeDatabases() { qputenv("FAKE_CLIENT_DATABASES", file().toLocal8Bit()); }
    ~FakeDatabases() { qunsetenv("FAKE_CLIENT_DATABASES"); }
    FakeDatabases(const FakeDatabases&) = delete;
    FakeDatabases& operator=(const FakeDatabases&) = delete;

    /// `extra`: further columns, see the fake client.
    void add(const QString& name, const QString& folder, const QString& extra = {}) {
        QFile list(file());
        if (!list.open(QIODevice::Append))
            throw std::runtime_error("the fake client's list of databases cannot be written");
        list.write(QStringList{name, folder, extra}.join(u'\t').toUtf8() + '\n');
    }

    /// The fake client's library, beside the test program.
    static QString library() {
#ifdef Q_OS_WIN
        const QString name = QStringLiteral("/fake_client.dll");
#else
        const QString name = QStringLiteral("/fake_client.so");
#endif
        return QCoreApplication::applicationDirPath() + name;
    }

    /// The list, for the fake client's environment variable.
    QString file() const {
        return m_folder.filePath(QStringLiteral("databases"));
    }

  private:
    QTemporaryDir m_folder;
};

/// A company's records over the client library, without SQL.
class ShopsRecordsDatabase : public data::Database {
  public:
    explicit ShopsRecordsDatabase(const engines::shops::ShopsDatabaseSettings& settings)
        : m_name(settings.name), m_records(settings) {}

    QString name() const override { return m_name; }
    QStringList tableNames() override { return m_records.tableNames(); }
    std::unique_ptr<data::TableFile> openTable(const QString& table) override {
        return m_records.openTable(table);
    }
    std::unique_ptr<data::SqlStatement> prepare(const QString&) override {
        throw data::DataError(data::ErrorKind::Engine, QString(), QStringLiteral("no SQL here"));
    }
    void setLockWait(std::chrono::milliseconds wait) override { m_records.setLockWait(wait); }
    bool beginRun() override { return true; }
    void endRun() override {}
    void inTransaction(const std::function<void()>& body) override {
        m_records.inTransaction(body);
    }

  private:
    QString m_name;
    engines::shops::ShopsTables m_records;
};

}  // namespace test
