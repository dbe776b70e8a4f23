#pragma once

#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <stdexcept>

#include "company/aliases.h"
#include "company/company.h"
#include "company/connection_module.h"
#include "tests/support/checks.h"

namespace test {

/// A temporary folder registered as the current company during its lifetime.
class CompanyFolder {
  public:
    explicit CompanyFolder(const QString& name = QStringLiteral("Koeyritys Äyräs")) : m_name(name) {
        company::storeAlias({name, m_folder.path(), {}, {}});
        company::takeIntoUse(name);
    }
    ~CompanyFolder() {
        company::TZavDbConnectionModule::shutDown();
        company::removeAlias(m_name);
    }
    CompanyFolder(const CompanyFolder&) = delete;
    CompanyFolder& operator=(const CompanyFolder&) = delete;

    QString path() const { return m_folder.path(); }
    QString file(const QString& name) const { return m_folder.filePath(name); }

  private:
    QString m_name;
    QTemporaryDir m_folder;
};

inline QByteArray fileBytes(const QString& fileName) {
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void writeFile(const QString& fileName, const QByteArray& bytes) {
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("test file cannot be written");
}

}  // namespace test
