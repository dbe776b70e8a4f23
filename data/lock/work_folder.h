#pragma once

#include <QString>
#include <memory>

#include "data/lock/lock_file.h"

namespace data {

/// A hidden folder ".zavdb-XXXXXX" in which a file is made before it is moved to its place in the
/// folder around it. It is removed with the object. One that a killed process left behind is
/// removed by the next work folder in the same folder: a lock tells whether somebody still uses it.
class WorkFolder {
  public:
    /// @throws DataError(Io, ReadOnly) naming the folder if nothing can be made there.
    explicit WorkFolder(const QString& folder);
    ~WorkFolder();
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    const QString& path() const { return m_path; }
    QString filePath(const QString& name) const;

  private:
    QString m_path;
    std::unique_ptr<LockFile> m_lock;
};

/// Removes the work folders in a folder whose processes have died.
void removeAbandonedWorkFolders(const QString& folder);

}  // namespace data
