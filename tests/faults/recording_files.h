#pragma once

#include <QByteArray>
#include <QString>
#include <map>
#include <random>
#include <vector>

namespace test {

/// An event on a database's files.
struct FileEvent {
    enum class Kind {
        Create,
        Write,
        Truncate,
        Sync,
        Remove,
        Mark  ///< something was reported as done
    };
    Kind kind;
    QString file;       ///< name without its folder
    qint64 offset = 0;  ///< of a write; the new size of a truncation
    QByteArray bytes = {};
};

/// Records the writes of all SQLite files opened during its lifetime. Writes reach the files
/// immediately; flushes are only recorded.
class RecordingFiles {
  public:
    RecordingFiles();
    ~RecordingFiles();
    RecordingFiles(const RecordingFiles&) = delete;
    RecordingFiles& operator=(const RecordingFiles&) = delete;

    static void mark();
    static const std::vector<FileEvent>& events();
};

/// The files of a folder after some of the recorded events: as programs see them, and as a power
/// loss may leave them.
class ReplayedFiles {
  public:
    using Files = std::map<QString, QByteArray>;

    /// `files`: contents before the first event.
    explicit ReplayedFiles(const Files& files);

    void apply(const FileEvent& event);
    Files seen() const;
    /// Only what was flushed.
    Files flushed() const;
    /// What was flushed, plus at random: nothing, the first unflushed writes, or any sectors of any
    /// unflushed writes.
    Files afterPowerLoss(std::mt19937& random) const;

  private:
    struct State {
        QByteArray seen;
        QByteArray flushed;
        std::vector<FileEvent> pending;
        bool nameIsSafe = true;  ///< the directory entry was flushed
        bool removed = false;    ///< but the removal was not flushed
    };
    std::map<QString, State> m_files;
};

void writeFiles(const QString& folder, const ReplayedFiles::Files& files);

}  // namespace test
