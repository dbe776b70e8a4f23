#include "tools/zavdb/company_builder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "company/registration.h"
#include "data/lock/work_folder.h"
#include "engines/embedded/embedded_database.h"
#include "tools/zavdb/command.h"

namespace tools {

namespace {

/// A folder created by this object, with its parents; removed again unless kept.
class NewFolder {
  public:
    explicit NewFolder(const QString& path) {
        const QString clean = QDir::cleanPath(path);
        // a missing drive is its own parent
        for (QString folder = clean, parent; !QFileInfo::exists(folder); folder = parent) {
            parent = QFileInfo(folder).path();
            if (parent == folder)
                throw CommandError(QStringLiteral("The folder %1 cannot be made.").arg(path));
            m_made.append(folder);
        }
        if (!QDir().mkpath(path)) {
            remove();
            throw CommandError(QStringLiteral("The folder %1 cannot be made.").arg(path));
        }
    }
    ~NewFolder() {
        if (!m_kept)
            remove();
    }
    NewFolder(const NewFolder&) = delete;
    NewFolder& operator=(const NewFolder&) = delete;
    void keep() { m_kept = true; }

  private:
    void remove() {
        for (const QString& folder : m_made)
            QDir().rmdir(folder);  // innermost first; fails for a folder that is not empty
    }
    QStringList m_made;
    bool m_kept = false;
};

}  // namespace

void requireFreeFolder(const QString& folder) {
    if (QFileInfo::exists(QDir(folder).filePath(engines::kEmbeddedFileName)))
        throw CommandError(QStringLiteral("The folder %1 holds a company already; \"zavdb add\" "
                                          "registers it.")
                               .arg(folder));
    const QFileInfo info(folder);
    if (info.exists() && !info.isDir())
        throw CommandError(QStringLiteral("%1 is no folder.").arg(folder));
}

void buildCompany(const QString& name, const QString& folder,
                  const std::vector<data::TableSource>& tables,
                  const std::function<void(data::Database&)>& fill) {
    const QString absolute = company::absoluteFolder(folder);
    company::requireFreeName(name);
    requireFreeFolder(absolute);
    NewFolder newFolder(absolute);
    const data::WorkFolder workFolder(absolute);
    engines::createEmbedded(workFolder.path(), tables);
    if (fill) {
        const std::unique_ptr<data::Database> database =
            engines::openEmbedded(name, workFolder.path());
        fill(*database);
    }
    const QString target = QDir(absolute).filePath(engines::kEmbeddedFileName);
    QFile file(workFolder.filePath(engines::kEmbeddedFileName));
    if (!file.rename(target))  // never overwrites
        throw CommandError(QStringLiteral("The database cannot be moved to %1: %2")
                               .arg(target, file.errorString()));
    try {
        company::registerCompany(name, absolute);
    } catch (...) {
        QFile::remove(target);
        throw;
    }
    newFolder.keep();
}

}  // namespace tools
