#pragma once

#include <QHeaderView>
#include <QStyledItemDelegate>
#include <QTableView>
#include <functional>

#include "search/grid_column.h"

namespace search {

/// The grid of a search window: whole rows, several at a time, read only. Rows are dragged out of
/// it with the left button; the wheel moves the current row. The narrow column at the left shows
/// the current row.
class SearchGrid : public QTableView {
    Q_OBJECT
  public:
    explicit SearchGrid(QWidget* parent = nullptr);

    /// Pixels that the mouse moves before a drag begins.
    static constexpr int kDragDistance = 5;

    /// The colours of a cell; asked while it is painted.
    using Colours = std::function<CellColours(int row, int column)>;
    void setColours(Colours colours);

  Q_SIGNALS:
    void dragWanted();
    /// A text was dropped: on a cell (`column` >= 0) or on the indicator (-1).
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
    QPoint m_pressed;
    bool m_mayDrag = false;
    int m_wheel = 0;  // eighths of a degree not yet turned into rows
};

}  // namespace search
