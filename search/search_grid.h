#pragma once

#include <QHeaderView>
#include <QStyledItemDelegate>
#include <QTableView>
#include <functional>

#include "search/grid_column.h"

namespace search {

/// The grid of a search window: read-only, multiple selection of whole rows. The left button drags
/// rows, the wheel moves the current row, and the indicator column at the left marks it. Headings
/// take drops too, since there may be no rows.
class SearchGrid : public QTableView {
    Q_OBJECT
  public:
    explicit SearchGrid(QWidget* parent = nullptr);

    /// Pixels the mouse must move to start a drag.
    static constexpr int kDragDistance = 5;

    /// The colours of a cell; called during painting.
    using Colours = std::function<CellColours(int row, int column)>;
    void setColours(Colours colours);

  Q_SIGNALS:
    void dragWanted();
    /// A text was dropped: on a cell or a heading (`column` >= 0) or on the indicator (-1).
    void textDropped(const QString& text, int column);
    void scrolled();

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void acceptDrops(QHeaderView& header);
    void take(QDropEvent& event, bool onRow, int column);

    QPoint m_pressed;
    bool m_mayDrag = false;
    int m_wheel = 0;  // eighths of a degree left over
};

}  // namespace search
