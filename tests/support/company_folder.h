#pragma once

#include <QString>
#include <QTemporaryDir>

#include "company/aliases.h"
#include "company/company.h"
#include "company/connection_module.h"
#include "tests/support/checks.h"
#include "tests/support/files.h"

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

}  // namespace test
