#include "framework/ui/cut_label.h"

#include <QPainter>

namespace framework {

void CutLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawText(contentsRect(), Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width()));
}

}  // namespace framework
