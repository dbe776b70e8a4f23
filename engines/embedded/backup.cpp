#include <QFile>
#include <QFileInfo>

#include "data/lock/work_folder.h"
#include "engines/embedded/company_file.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/copy_pages.h"
#include "engines/embedded/embedded_database.h"

namespace engines {

namespace embedded {

namespace {

// @return false if `progress` cancelled.
bool copyInto(const QString& from, const QString& to,
              const std::function<bool(int done, int total)>& progress) {
    Connection source(from);
    const SqliteHandle target(to, SqliteHandle::Mode::Create);
    return copyPages(source.db(), from, target.get(), to, progress);
}

}  // namespace

}  // namespace embedded

void backupEmbedded(const QString& folder, const QString& targetFile,
                    const std::function<bool(int done, int total)>& progress) {
    using namespace embedded;
    if (QFile::exists(targetFile))
        throw DataError(ErrorKind::Io, targetFile, QStringLiteral("the file exists already"));
    // In a temporary folder next to the target: no other file can be in the way.
    const WorkFolder workFolder(QFileInfo(targetFile).absolutePath());
    const QString unfinished = companyFile(workFolder.path());
    if (copyInto(companyFile(folder), unfinished, progress) &&
        !QFile::rename(unfinished, targetFile))
        throw DataError(ErrorKind::Io, targetFile,
                        QStringLiteral("the finished copy cannot be named"));
}

}  // namespace engines
