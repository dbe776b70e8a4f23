#include "search/wait_window.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace search {

namespace {

constexpr int kSteps = 1000;

}  // namespace

WaitWindow::WaitWindow(QWidget* owner)
    : QWidget(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      m_ownerStaysOpen(owner),
      m_progress(new QProgressBar(this)) {
    setObjectName(QStringLiteral("HakuOdotus"));
    setWindowModality(Qt::ApplicationModal);
    setWindowTitle(owner->windowTitle());
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(24, 20, 24, 20);
    column->setSpacing(10);
    auto* title = new QLabel(QStringLiteral("Haku käynnissä"), this);
    QFont large = title->font();
    large.setBold(true);
    large.setPointSizeF(large.pointSizeF() * 1.2);
    title->setFont(large);
    column->addWidget(title);
    m_progress->setRange(0, kSteps);
    m_progress->setMinimumWidth(320);
    column->addWidget(m_progress);
    column->addWidget(new QLabel(QStringLiteral("Esc keskeyttää haun"), this));
    adjustSize();
    const QRect around = owner->frameGeometry();
    move(around.center() - rect().center());
}

bool WaitWindow::onProgress(double share) {
    m_progress->setValue(static_cast<int>(share * kSteps));
    QCoreApplication::processEvents();
    return !m_cancelled;
}

void WaitWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        m_cancelled = true;
    event->accept();
}

void WaitWindow::closeEvent(QCloseEvent* event) {
    m_cancelled = true;
    event->ignore();
}

}  // namespace search
