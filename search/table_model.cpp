#include "search/table_model.h"

#include <QScopeGuard>
#include <algorithm>
#include <limits>

#include "data/error.h"

namespace search {

using data::StoredRecord;

namespace {

constexpr int kIdleSliceMs = 10;
constexpr int kFirstRowsMs = 30;  // for the first screen, before it is painted
constexpr int kWantMs = 15;       // for rows scrolled into view
constexpr int kFirstRows = 64;
constexpr int kProgressMs = 100;

bool isNumber(data::Kind kind) {
    switch (kind) {
        case data::Kind::SmallInt:
        case data::Kind::Integer:
        case data::Kind::Float:
        case data::Kind::Unsigned:
        case data::Kind::LargeInt:
            return true;
        default:
            return false;
    }
}

int asRow(qint64 row) {
    return static_cast<int>(std::min<qint64>(row, std::numeric_limits<int>::max()));
}

}  // namespace

TableModel::TableModel(data::TtbTable& table, QObject* parent)
    : QAbstractTableModel(parent), m_table(table), m_rows(table.file()), m_pages(kPages) {
    m_idle.setInterval(0);
    connect(&m_idle, &QTimer::timeout, this, &TableModel::idle);
}

int TableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_rowCount;
}

int TableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

void TableModel::setColumns(std::vector<GridColumn> columns) {
    beginResetModel();
    m_columns = std::move(columns);
    m_fields.clear();
    for (const GridColumn& column : m_columns)
        m_fields.push_back(m_table.findField(column.field));
    endResetModel();
}

int TableModel::columnOf(const QString& field) const {
    const auto found =
        std::find_if(m_columns.begin(), m_columns.end(), [&field](const GridColumn& column) {
            return column.field.compare(field, Qt::CaseInsensitive) == 0;
        });
    return found == m_columns.end() ? -1 : static_cast<int>(found - m_columns.begin());
}

// The record of a row, through the page cache; null if it is not known.
const StoredRecord* TableModel::find(qint64 row) const {
    const qint64 number = row / kPageRows;
    Page* page = m_pages.object(number);
    if (page == nullptr ||
        (row % kPageRows >= static_cast<qint64>(page->size()) && m_rows.isKnown(row))) {
        if (!m_rows.isKnown(row)) {
            m_blanksShown = true;
            return nullptr;
        }
        // Rows of the page before its first known one stay empty records.
        qint64 first = number * kPageRows;
        auto fresh = std::make_unique<Page>();
        while (!m_rows.isKnown(first)) {
            fresh->push_back({});
            ++first;
            m_blanksShown = true;
        }
        try {
            const auto wanted = static_cast<int>((number + 1) * kPageRows - first);
            for (StoredRecord& record : m_rows.read(first, wanted))
                fresh->push_back(std::move(record));
        } catch (const data::DataError& error) {
            reportFailure(data::errorText(error));
        }
        m_pages.insert(number, fresh.release());
        page = m_pages.object(number);
        if (page == nullptr)
            return nullptr;
    }
    const auto place = static_cast<size_t>(row % kPageRows);
    if (place >= page->size() || (*page)[place].bytes.isEmpty()) {
        m_blanksShown = m_blanksShown || place >= page->size();
        return nullptr;
    }
    return &(*page)[place];
}

// Once for all rows: painting must not open a dialog per cell.
void TableModel::reportFailure(const QString& text) const {
    if (m_failureReported)
        return;
    m_failureReported = true;
    auto* self = const_cast<TableModel*>(this);
    QMetaObject::invokeMethod(
        self, [self, text] { Q_EMIT self->failed(text); }, Qt::QueuedConnection);
}

std::optional<StoredRecord> TableModel::record(int row) const {
    if (row < 0 || row >= m_rowCount)
        return std::nullopt;
    const StoredRecord* found = find(row + m_offset);
    return found != nullptr ? std::optional(*found) : std::nullopt;
}

QVariant TableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_rowCount)
        return {};
    const auto place = static_cast<size_t>(index.column());
    const GridColumn& column = m_columns[place];
    const data::TField* field = m_fields[place];
    if (role == Qt::TextAlignmentRole)
        return alignment(place);
    if (role != Qt::DisplayRole)
        return {};
    const StoredRecord* found = find(index.row() + m_offset);
    if (found == nullptr)
        return QString();
    if (column.text) {
        try {
            return column.text(GridRow(m_table.layout(), *found));
        } catch (const data::DataError& error) {  // from another table that the column reads
            reportFailure(data::errorText(error));
            return QString();
        }
    }
    return field != nullptr ? field->displayText(found->bytes) : QString();
}

QVariant TableModel::alignment(size_t column) const {
    const data::TField* field = m_fields[column];
    const bool isNumbers = field != nullptr && !m_columns[column].text && isNumber(field->kind());
    return QVariant::fromValue(Qt::Alignment(isNumbers || m_columns[column].alignRight
                                                 ? Qt::AlignRight | Qt::AlignVCenter
                                                 : Qt::AlignLeft | Qt::AlignVCenter));
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Vertical || section < 0 || section >= columnCount())
        return {};
    const GridColumn& shown = column(section);
    if (role == Qt::DisplayRole)
        return shown.heading();
    if (role == Qt::ToolTipRole)
        return shown.field;
    if (role == Qt::TextAlignmentRole)
        return alignment(static_cast<size_t>(section));
    return {};
}

// --- other rows

// One slice; more only until the first screen is full.
void TableModel::learnFirstRows(ViewRows& rows) {
    const QDeadlineTimer deadline(kFirstRowsMs);
    ViewRows::Change change;
    bool more = !rows.isPlain() && rows.learn(QDeadlineTimer(0), change);
    while (more && !deadline.hasExpired() && !rows.isKnown(kFirstRows))
        more = rows.learn(QDeadlineTimer(0), change);
}

void TableModel::show(int key, std::optional<KeyRange> range, RowTest test) {
    ViewRows fresh(m_table.file());
    fresh.show(key, std::move(range), std::move(test));
    learnFirstRows(fresh);
    takeRows(std::move(fresh));
}

bool TableModel::search(int key, std::optional<KeyRange> range, RowTest test,
                        const std::function<bool(double)>& onProgress,
                        const std::optional<KeyTextTest>& byKey) {
    ViewRows fresh(m_table.file());
    fresh.show(key, std::move(range), std::move(test));
    if (!fresh.learnAll(onProgress, byKey))
        return false;
    takeRows(std::move(fresh));
    return true;
}

void TableModel::takeRows(ViewRows&& rows) {
    replaceRows([&] {
        m_rows = std::move(rows);
        m_recheck.reset();
    });
}

// Replaces all rows in a reset, which ends even if reading fails.
void TableModel::replaceRows(const std::function<void()>& work) {
    beginResetModel();
    const auto end = qScopeGuard([this] {
        restarted();
        endResetModel();
        Q_EMIT countChanged();
    });
    work();
}

// Walks until a row is known or a short time is over.
ViewRows::Change TableModel::learnUntil(const std::function<qint64()>& row) {
    ViewRows::Change change;
    const QDeadlineTimer deadline(kWantMs);
    while (!m_rows.isKnown(row()) && m_rows.learn(QDeadlineTimer(0), change) &&
           !deadline.hasExpired()) {
    }
    return change;
}

// After all rows were replaced, within a reset.
void TableModel::restarted() {
    m_pages.clear();
    m_failureReported = false;
    m_blanksShown = false;
    m_rowCount = asRow(m_rows.count());
    m_idle.start();
}

int TableModel::toRow(std::optional<qint64> row, bool wasRestarted) {
    if (wasRestarted)
        replaceRows([&] {
            const ViewRows::Change change = learnUntil([&] { return row.value_or(0); });
            if (row)
                row = *row + change.before;
        });
    if (!row || m_rowCount == 0)
        return -1;
    return std::min(asRow(*row), m_rowCount - 1);
}

int TableModel::rowOf(const StoredRecord& record) {
    bool wasRestarted = false;
    const std::optional<qint64> row = m_rows.rowOf(record, &wasRestarted);
    return toRow(row, wasRestarted);
}

int TableModel::nearest(const data::KeyValues& values) {
    bool wasRestarted = false;
    const std::optional<qint64> row = m_rows.nearest(values, &wasRestarted);
    return toRow(row, wasRestarted);
}

int TableModel::lastRow() {
    const auto last = [this] { return m_rows.count() - 1; };
    if (!m_rows.isCountExact() && !m_rows.isKnown(last()))
        replaceRows([&] {
            m_rows.startAtEnd();
            learnUntil(last);
        });
    return m_rowCount - 1;
}

bool TableModel::want(int first, int last, bool mayRestart) {
    first = std::clamp(first, 0, std::max(m_rowCount - 1, 0));
    last = std::clamp(last, first, std::max(m_rowCount - 1, 0));
    if (m_rowCount == 0 || (m_rows.isKnown(first) && m_rows.isKnown(last)))
        return false;
    if (!mayRestart || m_rows.isKnown(first) || m_rows.isKnown(last)) {
        // Near the known rows: a short walk usually reaches them.
        ViewRows::Change change;
        m_rows.learn(QDeadlineTimer(kWantMs), change);
        apply(change);
        return false;
    }
    replaceRows([&] {
        m_rows.startAtRow(first);
        learnUntil([last] { return last; });
    });
    return true;
}

void TableModel::reread() {
    m_pages.clear();
    if (m_rowCount > 0)
        Q_EMIT dataChanged(index(0, 0), index(m_rowCount - 1, columnCount() - 1));
}

void TableModel::recheck() {
    if (m_rows.isPlain())
        return;
    ViewRows fresh(m_table.file());
    fresh.show(m_rows.key(), m_rows.range(), m_rows.test());
    m_recheck = std::move(fresh);
    m_idle.start();
}

void TableModel::showRechecked() {
    Q_ASSERT(m_recheck && m_recheck->isCountExact());
    takeRows(ViewRows(std::move(*m_recheck)));
}

// @return whether the walk is unfinished.
bool TableModel::learnRechecked(const QDeadlineTimer& deadline) {
    ViewRows::Change ignored;
    if (m_recheck->learn(deadline, ignored))
        return true;
    if (m_recheck->hasSameRows(m_rows))
        m_recheck.reset();
    else
        Q_EMIT outdated();
    return false;
}

void TableModel::learnAll() {
    bool more = true;
    while (more) {
        ViewRows::Change change;
        more = m_rows.learn(QDeadlineTimer(kProgressMs), change);
        apply(change);
    }
}

// --- idle time

void TableModel::idle() {
    ViewRows::Change change;
    bool more = false;
    try {
        const QDeadlineTimer slice(kIdleSliceMs);
        more = m_recheck && m_rows.isCountExact()
                   ? learnRechecked(slice)
                   : m_rows.learn(slice, change) || m_recheck.has_value();
    } catch (const data::DataError& error) {
        m_idle.stop();
        m_recheck.reset();
        apply(change);
        Q_EMIT failed(data::errorText(error));
        return;
    }
    if (!more)
        m_idle.stop();
    apply(change);
}

// Announces a change of the row numbers.
void TableModel::apply(const ViewRows::Change& change) {
    if (change.before != 0) {
        m_pages.clear();
        const int by = asRow(std::llabs(change.before));
        m_offset = change.before;
        if (change.before > 0) {
            beginInsertRows({}, 0, by - 1);
            m_offset = 0;
            m_rowCount += by;
            endInsertRows();
        } else {
            beginRemoveRows({}, 0, by - 1);
            m_offset = 0;
            m_rowCount -= by;
            endRemoveRows();
        }
        Q_EMIT rowsShifted(static_cast<int>(change.before));
    }
    if (change.after > 0) {
        beginInsertRows({}, m_rowCount, m_rowCount + asRow(change.after) - 1);
        m_rowCount += asRow(change.after);
        endInsertRows();
    } else if (change.after < 0) {
        const int less = asRow(-change.after);
        beginRemoveRows({}, m_rowCount - less, m_rowCount - 1);
        m_rowCount -= less;
        endRemoveRows();
    }
    if (change.learned && m_blanksShown) {
        m_blanksShown = false;
        reread();
    }
    if (change.any())
        Q_EMIT countChanged();
}

}  // namespace search
