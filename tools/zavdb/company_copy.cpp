#include "tools/zavdb/company_copy.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>

#include "company/aliases.h"
#include "company/registration.h"
#include "engines/embedded/embedded_database.h"
#include "platform/ini_file.h"
#include "tools/zavdb/command.h"
#include "tools/zavdb/company_builder.h"
#include "tools/zavdb/company_files.h"
#include "tools/zavdb/copy_target.h"
#include "tools/zavdb/progress.h"
#include "tools/zavdb/table_copy.h"

namespace tools {

namespace {

const QString kSection = QStringLiteral("copy");
const QString kSourceKey = QStringLiteral("source");
const QString kTargetKey = QStringLiteral("target");
const QString kOwnCatalogueKey = QStringLiteral("own catalogue");

class CompanyCopier {
  public:
    CompanyCopier(data::Database& source, QString targetName, const QString& folder)
        : m_source(source),
          m_targetName(std::move(targetName)),
          m_folder(company::absoluteFolder(folder)),
          m_work(QDir(m_folder).filePath(kCopyFolder)),
          m_lock(QDir(m_work).filePath(QStringLiteral("lock"))) {
        m_lock.setStaleLockTime(0);  // valid as long as its process lives
    }

    CopyResult run(const QString& sourceFolder) {
        company::requireFreeName(m_targetName);
        const bool continues = QFileInfo::exists(stateFile());
        if (!continues)
            requireFreeFolder(m_folder);
        beginWork(continues);
        if (hasCompany(m_work) || !hasCompany(m_folder)) {
            copyTables();
            if (!m_result.differences.isEmpty())
                return m_result;
            copyCompanyFiles(sourceFolder, m_folder, m_result.notes);
            moveToPlace();
        }
        company::registerCompany(m_targetName, m_folder);
        m_lock.unlock();
        QDir(m_work).removeRecursively();
        m_result.findings = engines::checkEmbedded(m_folder);
        return m_result;
    }

  private:
    QString stateFile() const { return QDir(m_work).filePath(QStringLiteral("copy.ini")); }

    static bool hasCompany(const QString& folder) { return engines::hasEmbeddedDatabase(folder); }

    void beginWork(bool continues) {
        if (!QDir().mkpath(m_work))
            throw CommandError(QStringLiteral("The folder %1 cannot be made.").arg(m_work));
        if (!m_lock.tryLock(0))
            throw CommandError(
                m_lock.error() == QLockFile::LockFailedError
                    ? QStringLiteral("Another zavdb is copying into %1.").arg(m_folder)
                    : QStringLiteral("The folder %1 cannot be written.").arg(m_work));
        if (continues) {
            const platform::IniFile state = platform::IniFile::read(stateFile());
            const QString source = state.value(kSection, kSourceKey).value_or(QString());
            const QString target = state.value(kSection, kTargetKey).value_or(QString());
            if (source.compare(m_source.name(), Qt::CaseInsensitive) != 0 ||
                target.compare(m_targetName, Qt::CaseInsensitive) != 0)
                throw CommandError(
                    QStringLiteral("%1 holds an unfinished copy of \"%2\" as \"%3\"; finish that "
                                   "one, or remove the folder.")
                        .arg(m_work, source, target));
        } else {
            platform::IniFile state;
            state.setValue(kSection, kSourceKey, m_source.name());
            state.setValue(kSection, kTargetKey, m_targetName);
            state.write(stateFile());
        }
    }

    /// Opens the source's tables; skips listed tables without a data file.
    void openSourceTables() {
        for (const QString& name : m_source.tableNames()) {
            try {
                m_tables.push_back(m_source.openTable(name));
            } catch (const data::DataError& error) {
                if (error.kind() != data::ErrorKind::NoSuchTable)
                    throw;
                m_result.notes.append(
                    QStringLiteral("%1: listed in the catalogue without a data file; left out")
                        .arg(name));
            }
        }
    }

    bool ownCatalogue() const {
        return platform::IniFile::read(stateFile()).value(kSection, kOwnCatalogueKey) ==
               QStringLiteral("1");
    }

    void copyTables() {
        openSourceTables();
        if (!hasCompany(m_work)) {
            const bool own = !makeCopyTarget(m_tables, m_work);
            platform::IniFile state = platform::IniFile::read(stateFile());
            state.setValue(kSection, kOwnCatalogueKey,
                           own ? QStringLiteral("1") : QStringLiteral("0"));
            state.write(stateFile());
            takeCopyTarget(m_work);
        }
        const bool own = ownCatalogue();
        if (own)
            m_result.notes.append(
                QStringLiteral("The catalogue's rows are the copy's own: the source's do not "
                               "describe its tables to the byte."));
        const std::unique_ptr<data::Database> target = engines::openEmbedded(m_targetName, m_work);
        std::vector<std::pair<data::TableFile*, std::unique_ptr<data::TableFile>>> pairs;
        for (const std::unique_ptr<data::TableFile>& table : m_tables) {
            const QString& name = table->layout().tableName();
            if (!(own && isCatalogueTable(name)))
                pairs.emplace_back(table.get(), openTable(*target, name));
        }
        const CopiedTables copied(m_tables);
        for (const auto& [source, copy] : pairs)
            m_result.inserted += copyTable(*source, *target, *copy, copied.belongs(*source),
                                           shown(*source, QStringLiteral("copied")));
        for (const auto& [source, copy] : pairs) {
            const Comparison comparison = compareTables(*source, *copy, copied.belongs(*source),
                                                        shown(*source, QStringLiteral("compared")));
            m_result.differences += comparison.findings;
            m_result.records += comparison.records;
            ++m_result.tables;
        }
    }

    CopyProgress shown(data::TableFile& table, const QString& what) {
        const QString name = table.layout().tableName() + u' ' + what;
        return [this, name, total = table.recordCount()](qint64 records) {
            m_progress.show(name, records, total);
        };
    }

    void moveToPlace() {
        const QString target = QDir(m_folder).filePath(engines::kEmbeddedFileName);
        QFile file(QDir(m_work).filePath(engines::kEmbeddedFileName));
        if (!file.rename(target))  // never overwrites
            throw CommandError(QStringLiteral("The database cannot be moved to %1: %2")
                                   .arg(target, file.errorString()));
    }

    data::Database& m_source;
    QString m_targetName;
    QString m_folder;
    QString m_work;
    QLockFile m_lock;
    std::vector<std::unique_ptr<data::TableFile>> m_tables;
    CopyResult m_result;
    Progress m_progress;
};

}  // namespace

CopyResult copyCompany(data::Database& source, const QString& sourceFolder,
                       const QString& targetName, const QString& folder) {
    return CompanyCopier(source, targetName, folder).run(sourceFolder);
}

}  // namespace tools
