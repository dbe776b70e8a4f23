#pragma once

#include <QAbstractTableModel>
#include <optional>

#include "vatchange/changes/change_view.h"

namespace vatchange {

/// The item model of a list of changes under a filter, in an order.
class ChangesModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// Shows a list in the order of the run, without a filter. It must outlive the model.
    void show(const ChangeList& list);
    const ChangeView& view() const { return *m_view; }
    /// The list's row at a row of the model.
    int listRow(int row) const { return m_view->row(row); }
    /// The model's row of a list's row; -1: it is not shown.
    int rowOf(int listRow) const;

    /// Adds the rows that the list got since, last.
    void takeNewRows();
    /// Without a column: the order of the run.
    void order(std::optional<ChangeColumn> column, Qt::SortOrder order,
               const ViewProgress& progress);
    void restrict(const ChangeFilter& filter, const ViewProgress& progress);

    static QString title(ChangeColumn column);
    static bool isNumber(ChangeColumn column);

  private:
    const ChangeList* m_list = nullptr;
    std::optional<ChangeView> m_view;
    int m_shown = 0;  // rows announced
};

}  // namespace vatchange
