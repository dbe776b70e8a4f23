#pragma once

#include <QWidget>
#include <functional>

namespace vatchange {

/// Shows a picture that a function draws.
class ChartWidget : public QWidget {
    Q_OBJECT
  public:
    using Paint = std::function<void(QPainter&, const QRectF&)>;

    explicit ChartWidget(QWidget* parent = nullptr);
    /// `words`: the picture for screen readers and as the hint.
    void show(Paint paint, const QString& words);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    Paint m_paint;
};

}  // namespace vatchange
