#pragma once

#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <vector>

#include "search/grid_column.h"

namespace search {

/// Chooses the columns of a search window: ticks show them, dragging orders them. A text typed
/// above the list leaves the columns that contain it.
class ColumnDialog : public QDialog {
    Q_OBJECT
  public:
    /// @param defaults what "Palauta" puts in place; the same columns.
    ColumnDialog(const std::vector<GridColumn>& columns, std::vector<GridColumn> defaults,
                 QWidget* parent);

    /// The columns as chosen: all of them, in order.
    std::vector<GridColumn> columns() const;

    QLineEdit* const Etsi;
    QListWidget* const Sarakkeet;
    QPushButton* Palauta;
    QPushButton* Ok;

  private:
    void fill(const std::vector<GridColumn>& columns);
    void filterList();
    void updateOk();

    std::vector<GridColumn> m_defaults;
    std::vector<GridColumn> m_columns;  // those in the list, by the items' data
};

}  // namespace search
