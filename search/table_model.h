#pragma once

#include <QAbstractTableModel>
#include <QCache>
#include <QTimer>
#include <functional>
#include <optional>
#include <vector>

#include "data/table/tb_table.h"
#include "search/grid_column.h"
#include "search/view_rows.h"

namespace search {

/// The item model of a search grid over an open record table. Reads rows in pages, keeps at most
/// kPages of them, and walks filtered views in slices of idle time. Rows not known yet are blank.
class TableModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    static constexpr int kPageRows = 64;
    static constexpr int kPages = 48;

    /// The table must be open and outlive the model.
    explicit TableModel(data::TtbTable& table, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void setColumns(std::vector<GridColumn> columns);
    const std::vector<GridColumn>& columns() const { return m_columns; }
    const GridColumn& column(int place) const { return m_columns[static_cast<size_t>(place)]; }
    /// The table's field of a column; nullptr for a computed column.
    const data::TField* field(int place) const { return m_fields[static_cast<size_t>(place)]; }
    int columnOf(const QString& field) const;  ///< -1: none; case-insensitive

    /// Shows other rows; clears selection and current row. @throws data::DataError, keeping the
    /// rows.
    void show(int key, std::optional<KeyRange> range, RowTest test);
    /// The same, walking all records at once. `onProgress`, called several times a second with the
    /// share done (0 to 1), cancels by returning false. @return false if cancelled: the rows stay.
    bool search(int key, std::optional<KeyRange> range, RowTest test,
                const std::function<bool(double)>& onProgress,
                const std::optional<KeyTextTest>& byKey = {});
    const ViewRows& rows() const { return m_rows; }
    bool isCountExact() const { return m_rows.isCountExact(); }

    /// The record of a row; nothing if it is not known.
    std::optional<data::StoredRecord> record(int row) const;
    /// The row of a record or of the next one shown; -1 if there is none. While the count is not
    /// exact this may replace all rows (a reset), with estimated row numbers.
    int rowOf(const data::StoredRecord& record);
    int nearest(const data::KeyValues& values);
    /// The last row, made known; -1 if there is none.
    int lastRow();
    /// Makes visible rows known as far as a few milliseconds allow. With `mayRestart`, the walk
    /// restarts (a reset) for rows far from the known ones. @return whether it did.
    bool want(int first, int last, bool mayRestart);
    /// Rereads the records, keeping row numbers.
    void reread();
    /// Walks a filtered view again in idle time and emits outdated() if it finds other records.
    /// Until then the rows shown do not change.
    void recheck();
    /// Shows the result of recheck(); clears selection and current row.
    void showRechecked();
    /// Walks until every row is known, without a time limit.
    void learnAll();

  Q_SIGNALS:
    /// Rows were inserted (negative: removed) before the known ones.
    void rowsShifted(int by);
    void countChanged();
    void outdated();
    void failed(const QString& text);

  private:
    /// Of a column's cells and its heading.
    QVariant alignment(size_t column) const;
    using Page = std::vector<data::StoredRecord>;

    const data::StoredRecord* find(qint64 row) const;
    void apply(const ViewRows::Change& change);
    void idle();
    bool learnRechecked(const QDeadlineTimer& deadline);
    void restarted();
    static void learnFirstRows(ViewRows& rows);
    ViewRows::Change learnUntil(const std::function<qint64()>& row);
    void takeRows(ViewRows&& rows);
    void replaceRows(const std::function<void()>& work);
    int toRow(std::optional<qint64> row, bool wasRestarted);
    void reportFailure(const QString& text) const;

    data::TtbTable& m_table;
    std::vector<GridColumn> m_columns;
    std::vector<const data::TField*> m_fields;  // by column; null: computed
    mutable ViewRows m_rows;
    std::optional<ViewRows> m_recheck;  // the same view, walked again
    int m_rowCount = 0;
    qint64 m_offset = 0;  // from announced row numbers to m_rows', while a change is announced
    mutable QCache<qint64, Page> m_pages;
    mutable bool m_blanksShown = false;
    mutable bool m_failureReported = false;
    QTimer m_idle;
};

}  // namespace search
