#include "vatchange/views/chart_widget.h"

#include <QPainter>

namespace vatchange {

namespace {

// in lines of text
constexpr int kHeight = 11;
constexpr int kLeastHeight = 8;
constexpr int kWidth = 26;
constexpr int kLeastWidth = 18;

}  // namespace

ChartWidget::ChartWidget(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

void ChartWidget::show(Paint paint, const QString& words) {
    m_paint = std::move(paint);
    setAccessibleDescription(words);
    setToolTip(words);
    update();
}

QSize ChartWidget::sizeHint() const {
    return {kWidth * fontMetrics().height(), kHeight * fontMetrics().height()};
}

QSize ChartWidget::minimumSizeHint() const {
    return {kLeastWidth * fontMetrics().height(), kLeastHeight * fontMetrics().height()};
}

void ChartWidget::paintEvent(QPaintEvent*) {
    if (!m_paint)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::TextAntialiasing);
    m_paint(painter, QRectF(rect()));
}

}  // namespace vatchange
