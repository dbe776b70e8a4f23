#include "search/search_grid.h"

#include <QApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include "search/drag_source.h"

namespace search {

namespace {

const QString kDropSource = QStringLiteral("Suodatin");
constexpr int kIndicatorWidth = 16;
constexpr int kWheelStep = 120;

bool isFilterText(const QDropEvent& event) {
    return dragSource(*event.mimeData()) == kDropSource;
}

void answer(QDropEvent& event, bool accept) {
    if (accept)
        event.acceptProposedAction();
    else
        event.ignore();
}

// The indicator column: a triangle at the current row.
class Indicator : public QHeaderView {
  public:
    explicit Indicator(QTableView* grid) : QHeaderView(Qt::Vertical, grid), m_grid(grid) {
        setSectionsClickable(false);
        setHighlightSections(false);
    }
    QSize sizeHint() const override { return {kIndicatorWidth, 0}; }

  protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override {
        painter->save();
        painter->fillRect(rect, palette().button());
        if (logicalIndex == m_grid->currentIndex().row()) {
            const QPoint middle = rect.center();
            QPolygon triangle;
            triangle << middle + QPoint(-3, -4) << middle + QPoint(3, 0) << middle + QPoint(-3, 4);
            painter->setRenderHint(QPainter::Antialiasing);
            painter->setPen(Qt::NoPen);
            painter->setBrush(palette().buttonText());
            painter->drawPolygon(triangle);
        }
        painter->setPen(palette().color(QPalette::Mid));
        painter->drawLine(rect.topRight(), rect.bottomRight());
        painter->restore();
    }

  private:
    QTableView* m_grid;
};

// Coloured cells keep their colour in a selected row; the focused cell is never coloured.
class ColouredCells : public QStyledItemDelegate {
  public:
    ColouredCells(QTableView* grid, SearchGrid::Colours colours)
        : QStyledItemDelegate(grid), m_grid(grid), m_colours(std::move(colours)) {}

    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (!m_colours || index == m_grid->currentIndex())
            return;
        const CellColours colours = m_colours(index.row(), index.column());
        if (colours.background) {
            option->backgroundBrush = *colours.background;
            if (option->state & QStyle::State_Selected)
                option->font.setBold(true);
            option->state &= ~QStyle::State_Selected;
        }
        if (colours.text)
            option->palette.setColor(QPalette::Text, *colours.text);
    }

  private:
    QTableView* m_grid;
    SearchGrid::Colours m_colours;
};

}  // namespace

SearchGrid::SearchGrid(QWidget* parent) : QTableView(parent) {
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setVerticalScrollMode(ScrollPerItem);
    setHorizontalScrollMode(ScrollPerPixel);
    setCornerButtonEnabled(false);
    setAlternatingRowColors(true);
    setShowGrid(true);
    setVerticalHeader(new Indicator(this));
    const int rowHeight = fontMetrics().height() + 6;
    verticalHeader()->setMinimumSectionSize(rowHeight);
    verticalHeader()->setDefaultSectionSize(rowHeight);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionsMovable(true);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setAcceptDrops(true);
    setDragDropMode(DropOnly);
    setDropIndicatorShown(false);
    acceptDrops(*verticalHeader());
    acceptDrops(*horizontalHeader());
    horizontalHeader()->setSectionsClickable(true);
    horizontalHeader()->setSortIndicatorShown(true);
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &SearchGrid::scrolled);
}

void SearchGrid::acceptDrops(QHeaderView& header) {
    header.setAcceptDrops(true);
    header.viewport()->setAcceptDrops(true);
    header.viewport()->installEventFilter(this);
}

void SearchGrid::setColours(Colours colours) {
    setItemDelegate(new ColouredCells(this, std::move(colours)));
}

void SearchGrid::mousePressEvent(QMouseEvent* event) {
    m_pressed = event->position().toPoint();
    m_mayDrag = event->button() == Qt::LeftButton && indexAt(m_pressed).isValid();
    QTableView::mousePressEvent(event);
}

void SearchGrid::mouseMoveEvent(QMouseEvent* event) {
    if (!m_mayDrag || !(event->buttons() & Qt::LeftButton))
        return;  // moving the mouse drags, it does not select
    if ((event->position().toPoint() - m_pressed).manhattanLength() < kDragDistance)
        return;
    m_mayDrag = false;
    Q_EMIT dragWanted();
}

void SearchGrid::wheelEvent(QWheelEvent* event) {
    if (event->modifiers() & Qt::ShiftModifier || event->angleDelta().y() == 0) {
        QTableView::wheelEvent(event);
        return;
    }
    event->accept();
    m_wheel += event->angleDelta().y();
    const int rows = -m_wheel / kWheelStep;
    m_wheel %= kWheelStep;
    if (rows == 0 || model() == nullptr || model()->rowCount() == 0)
        return;
    const QModelIndex current = currentIndex();
    const int row = std::clamp(current.row() + rows, 0, model()->rowCount() - 1);
    selectionModel()->setCurrentIndex(
        model()->index(row, std::max(current.column(), 0)),
        QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

// --- drops: only from the filter edit, only on a cell, a heading or the indicator

void SearchGrid::dragEnterEvent(QDragEnterEvent* event) {
    answer(*event, isFilterText(*event));
}

void SearchGrid::dragMoveEvent(QDragMoveEvent* event) {
    answer(*event, isFilterText(*event) && indexAt(event->position().toPoint()).isValid());
}

void SearchGrid::dropEvent(QDropEvent* event) {
    const QModelIndex cell = indexAt(event->position().toPoint());
    take(*event, cell.isValid(), cell.column());
}

void SearchGrid::take(QDropEvent& event, bool onRow, int column) {
    answer(event, onRow && isFilterText(event));
    if (!event.isAccepted())
        return;
    // After the drag has ended, because the receiver may open windows.
    QMetaObject::invokeMethod(
        this, [this, text = event.mimeData()->text(), column] { Q_EMIT textDropped(text, column); },
        Qt::QueuedConnection);
}

bool SearchGrid::eventFilter(QObject* watched, QEvent* event) {
    const bool onHeading = watched == horizontalHeader()->viewport();
    if (!onHeading && watched != verticalHeader()->viewport())
        return QTableView::eventFilter(watched, event);
    const QHeaderView& header = onHeading ? *horizontalHeader() : *verticalHeader();
    const auto sectionAt = [&header](const QDropEvent& drop) {
        return header.logicalIndexAt(drop.position().toPoint());
    };
    if (event->type() == QEvent::DragEnter) {
        dragEnterEvent(static_cast<QDragEnterEvent*>(event));
    } else if (event->type() == QEvent::DragMove) {
        auto& move = static_cast<QDragMoveEvent&>(*event);
        answer(move, isFilterText(move) && sectionAt(move) >= 0);
    } else if (event->type() == QEvent::Drop) {
        auto& drop = static_cast<QDropEvent&>(*event);
        take(drop, sectionAt(drop) >= 0, onHeading ? sectionAt(drop) : -1);
    } else {
        return QTableView::eventFilter(watched, event);
    }
    return true;
}

}  // namespace search
