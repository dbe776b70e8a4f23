#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace test {

/// A system call on a file of the folder under test.
struct FileCall {
    QString name;  ///< "open", "read", "write", "lock", "truncate", "flush", "map", "close", ...
    QString file;  ///< without its folder
    bool forWriting = false;  ///< of an open
    qint64 bytes = 0;         ///< of a write
};

/// Makes system calls on files below a folder fail during its lifetime, whichever library makes
/// them. This test program defines the C library's functions itself, so every library calls these.
class FailingCalls {
  public:
    /// Returns the errno to fail with, 0 to let the call through.
    using Judge = std::function<int(const FileCall& call)>;

    FailingCalls(const QString& folder, Judge judge);
    ~FailingCalls();
    FailingCalls(const FailingCalls&) = delete;
    FailingCalls& operator=(const FailingCalls&) = delete;
};

/// The errno that such a call typically fails with.
int defaultError(const FileCall& call);

}  // namespace test
