#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace test {

/// A call of the operating system on a file of the folder under test.
struct FileCall {
    QString name;  ///< "open", "read", "write", "lock", "truncate", "flush", "map", "close", ...
    QString file;  ///< without its folder
    bool forWriting = false;  ///< of an open
    qint64 bytes = 0;         ///< of a write
};

/// Makes calls of the operating system fail while it lives: those of the engine, the record locks,
/// the logs and the small files, whichever library makes them, on files below a folder. This test
/// program defines the functions itself, so that every library in it calls these.
class FailingCalls {
  public:
    /// @return the error (errno) that the call is to fail with; 0 to let it through.
    using Judge = std::function<int(const FileCall& call)>;

    FailingCalls(const QString& folder, Judge judge);
    ~FailingCalls();
    FailingCalls(const FailingCalls&) = delete;
    FailingCalls& operator=(const FailingCalls&) = delete;
};

/// The error that such a call fails with in practice.
int usualError(const FileCall& call);

}  // namespace test
