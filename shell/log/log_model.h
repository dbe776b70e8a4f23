#pragma once

#include <QAbstractTableModel>
#include <QCache>
#include <memory>
#include <vector>

#include "shell/log/log_file.h"

namespace shell {

/// Which lines of a log are shown.
struct LogFilter {
    LogKind least = LogKind::Plain;  ///< lines of this kind and of the worse ones
    QString text;                    ///< contained in the line, in any case; may be empty
};

/// The lines of a log that pass a filter, oldest first. Lines are found in steps, from the end of
/// the file; their texts are read when they are shown.
class LogModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    enum Column { Time, Origin, Message, ColumnCount };

    explicit LogModel(QObject* parent = nullptr);

    /// Shows a log from its end. @throws data::DataError
    void open(const QString& fileName, LogFile::Encoding encoding);
    void setFilter(const LogFilter& filter);
    bool exists() const { return m_file != nullptr && m_file->exists(); }
    const LogFilter& filter() const { return m_filter; }

    /// Looks through the next older part of the file. @return false if there is none left
    bool readOlder();
    /// Shows what was appended, and all again if the file was cut.
    void readNewer();
    double partRead() const { return m_file->partRead(); }
    bool complete() const { return m_file->atBeginning(); }
    /// Lines looked through so far of a kind, shown or not.
    qint64 count(LogKind kind) const { return m_counts[static_cast<std::size_t>(kind)]; }

    /// A line as it stands in the file.
    QString line(int row) const;
    LogKind kind(int row) const { return at(row).kind; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    void restart();
    std::vector<LogLine> passing(const std::vector<LogLine>& lines);
    const LogLine& at(int row) const;

    std::unique_ptr<LogFile> m_file;
    LogFilter m_filter;
    std::vector<LogLine> m_older;  ///< newest first: the file is read backwards
    std::vector<LogLine> m_newer;
    std::array<qint64, 3> m_counts{};
    mutable QCache<qint64, QString> m_texts;  ///< by offset
};

}  // namespace shell
