#include "search/alku_merkki_edit.h"

#include <QDrag>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>

#include "framework/ui/close_deferral.h"
#include "search/drag_source.h"

namespace search {

namespace {

QChar& programCharacter() {
    static QChar character;
    return character;
}

}  // namespace

void TAlkuMerkkiEdit::setProgramStartCharacter(QChar character) {
    programCharacter() = character;
}

QChar TAlkuMerkkiEdit::programStartCharacter() {
    return programCharacter();
}

TAlkuMerkkiEdit::TAlkuMerkkiEdit(QWidget* parent)
    : QLineEdit(parent), m_start(programStartCharacter()) {}

void TAlkuMerkkiEdit::keyPressEvent(QKeyEvent* event) {
    if (!m_start.isNull() && event->text() == m_start) {
        event->accept();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void TAlkuMerkkiEdit::mousePressEvent(QMouseEvent* event) {
    m_pressed = event->pos();
    m_mayDrag = event->button() == Qt::LeftButton && !(event->modifiers() & Qt::ShiftModifier);
    QLineEdit::mousePressEvent(event);
}

void TAlkuMerkkiEdit::mouseMoveEvent(QMouseEvent* event) {
    if (!m_mayDrag || !(event->buttons() & Qt::LeftButton)) {
        QLineEdit::mouseMoveEvent(event);
        return;
    }
    if (text().isEmpty() || (event->pos() - m_pressed).manhattanLength() < kDragDistance)
        return;
    m_mayDrag = false;
    auto* drag = new QDrag(this);
    drag->setMimeData(dragData(objectName(), text()));
    const framework::CloseDeferral deferral(this);
    drag->exec(Qt::CopyAction);
}

}  // namespace search
