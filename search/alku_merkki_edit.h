#pragma once

#include <QLineEdit>

namespace search {

/// An edit that ignores one start character (which a bar code reader sends before the code), taken
/// from the program's settings when the edit is created. Its text can be dragged with the left
/// button; with Shift the mouse selects as in any edit.
class TAlkuMerkkiEdit : public QLineEdit {
    Q_OBJECT
  public:
    explicit TAlkuMerkkiEdit(QWidget* parent = nullptr);

    /// The start character of new edits; a null character: none.
    static void setProgramStartCharacter(QChar character);
    static QChar programStartCharacter();

    QChar startCharacter() const { return m_start; }
    void setStartCharacter(QChar character) { m_start = character; }

    /// Pixels the mouse must move to start a drag.
    static constexpr int kDragDistance = 20;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

  private:
    QChar m_start;
    QPoint m_pressed;
    bool m_mayDrag = false;
};

}  // namespace search
