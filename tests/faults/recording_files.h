#pragma once

#include <QByteArray>
#include <QString>
#include <map>
#include <random>
#include <vector>

namespace test {

/// One thing that happened to a database's files.
struct FileEvent {
    enum class Kind {
        Create,
        Write,
        Truncate,
        Sync,
        Remove,
        Mark  ///< something was reported as done to the outside
    };
    Kind kind;
    QString file;       ///< name without its folder
    qint64 offset = 0;  ///< of a write; the new size of a truncation
    QByteArray bytes = {};
};

/// SQLite files whose writes are recorded from construction to destruction: every file that the
/// engine opens meanwhile. Writes reach the files at once, flushes are only recorded.
class RecordingFiles {
  public:
    RecordingFiles();
    ~RecordingFiles();
    RecordingFiles(const RecordingFiles&) = delete;
    RecordingFiles& operator=(const RecordingFiles&) = delete;

    static void mark();
    static const std::vector<FileEvent>& events();
};

/// The files of a folder as they are after some of the recorded events: as programs see them, and
/// as a loss of power may leave them.
class ReplayedFiles {
  public:
    using Files = std::map<QString, QByteArray>;

    /// `files`: what stands on the disk before the first event.
    explicit ReplayedFiles(const Files& files);

    void apply(const FileEvent& event);
    Files seen() const;
    /// What was flushed, nothing more.
    Files flushed() const;
    /// What was flushed, and of the rest what chance leaves: nothing, the first writes, or any
    /// sectors of any writes.
    Files afterPowerLoss(std::mt19937& random) const;

  private:
    struct State {
        QByteArray seen;
        QByteArray flushed;
        std::vector<FileEvent> pending;
        bool nameIsSafe = true;  ///< the folder's entry was flushed
        bool removed = false;    ///< by an event that was not flushed
    };
    std::map<QString, State> m_files;
};

void writeFiles(const QString& folder, const ReplayedFiles::Files& files);

}  // namespace test
