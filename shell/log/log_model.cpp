#include "shell/log/log_model.h"

#include <QColor>
#include <QFont>
#include <QGuiApplication>
#include <QPalette>

#include "data/error.h"

namespace shell {

namespace {

constexpr int kTextsKept = 2000;

// Readable on light and dark lists.
QColor colourOf(LogKind kind) {
    const bool dark = QGuiApplication::palette().base().color().lightness() < 128;
    if (kind == LogKind::Error)
        return dark ? QColor(255, 138, 128) : QColor(183, 28, 28);
    return dark ? QColor(255, 204, 128) : QColor(138, 75, 0);
}

}  // namespace

LogModel::LogModel(QObject* parent) : QAbstractTableModel(parent), m_texts(kTextsKept) {}

void LogModel::open(const QString& fileName, LogFile::Encoding encoding) {
    m_file = std::make_unique<LogFile>(fileName, encoding);
    restart();
}

void LogModel::setFilter(const LogFilter& filter) {
    m_filter = filter;
    restart();
}

void LogModel::restart() {
    beginResetModel();
    m_older.clear();
    m_newer.clear();
    m_texts.clear();
    m_counts = {};
    endResetModel();
    m_file->restart();
    readOlder();
}

bool LogModel::readOlder() {
    if (m_file->atBeginning())
        return false;
    const std::vector<LogLine> lines = passing(m_file->readOlder());
    if (!lines.empty()) {
        beginInsertRows({}, 0, static_cast<int>(lines.size()) - 1);
        m_older.insert(m_older.end(), lines.begin(), lines.end());
        endInsertRows();
    }
    return true;
}

void LogModel::readNewer() {
    if (m_file->isCut()) {
        restart();
        return;
    }
    const std::vector<LogLine> lines = passing(m_file->readNewer());
    if (lines.empty())
        return;
    const int rows = rowCount();
    beginInsertRows({}, rows, rows + static_cast<int>(lines.size()) - 1);
    m_newer.insert(m_newer.end(), lines.begin(), lines.end());
    endInsertRows();
}

std::vector<LogLine> LogModel::passing(const std::vector<LogLine>& lines) {
    std::vector<LogLine> passed;
    for (const LogLine& line : lines) {
        ++m_counts[static_cast<std::size_t>(line.kind)];
        if (line.kind >= m_filter.least &&
            (m_filter.text.isEmpty() ||
             m_file->text(line).contains(m_filter.text, Qt::CaseInsensitive)))
            passed.push_back(line);
    }
    return passed;
}

const LogLine& LogModel::at(int row) const {
    const auto index = static_cast<std::size_t>(row);
    return index < m_older.size() ? m_older[m_older.size() - 1 - index]
                                  : m_newer[index - m_older.size()];
}

QString LogModel::line(int row) const {
    const LogLine& place = at(row);
    if (const QString* known = m_texts.object(place.offset))
        return *known;
    auto text = std::make_unique<QString>();
    try {
        *text = m_file->text(place);
    } catch (const data::DataError& e) {
        *text = e.finnish();
    }
    QString copy = *text;
    m_texts.insert(place.offset, text.release());
    return copy;
}

int LogModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_older.size() + m_newer.size());
}

int LogModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant LogModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    if (role == Qt::DisplayRole) {
        const LogParts parts = logParts(line(index.row()));
        switch (index.column()) {
            case Time:
                return parts.time;
            case Origin:
                return parts.origin;
            default:
                return parts.message;
        }
    }
    if (role == Qt::ForegroundRole && kind(index.row()) != LogKind::Plain)
        return colourOf(kind(index.row()));
    return {};
}

QVariant LogModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const QStringList titles = {QStringLiteral("Aika"), QStringLiteral("Kone"),
                                       QStringLiteral("Viesti")};
    return titles.value(section);
}

}  // namespace shell
