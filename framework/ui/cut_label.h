#pragma once

#include <QLabel>

namespace framework {

/// One line of plain text, cut with dots where the label is too narrow.
class CutLabel : public QLabel {
  public:
    using QLabel::QLabel;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace framework
