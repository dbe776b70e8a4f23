#include "framework/ui/work_dialog.h"

#include <QCoreApplication>
#include <QVBoxLayout>

#include "framework/ui/dialogs.h"

namespace framework {

namespace {

constexpr qint64 kAppearsAfterMs = 400;
constexpr qint64 kEventIntervalMs = 50;
constexpr qint64 kEstimateAfterMs = 2000;
constexpr int kSteps = 1000;
constexpr int kMargin = 14;
constexpr int kCharacters = 56;

QString remaining(qint64 elapsed, qint64 done, qint64 total) {
    if (done <= 0 || total <= 0 || elapsed < kEstimateAfterMs)
        return {};
    const qint64 seconds = elapsed * (total - done) / done / 1000 + 1;
    return seconds < 90 ? QStringLiteral(", jäljellä noin %1 s").arg(seconds)
                        : QStringLiteral(", jäljellä noin %1 min").arg((seconds + 59) / 60);
}

}  // namespace

WorkDialog::WorkDialog(QWidget* parent, const QString& title)
    : QDialog(parent),
      m_deferral(parent),
      m_text(new QLabel(this)),
      m_progress(new QProgressBar(this)),
      m_stop(new QPushButton(QStringLiteral("&Keskeytä"), this)) {
    setObjectName(QStringLiteral("Tyo"));
    setWindowTitle(title);
    setWindowModality(Qt::ApplicationModal);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_text->setMinimumWidth(kCharacters * fontMetrics().averageCharWidth());
    m_progress->setRange(0, 0);
    m_progress->setAccessibleName(title);
    m_stop->setObjectName(QStringLiteral("Keskeyta"));
    m_stop->setToolTip(QStringLiteral("Keskeyttää työn (Esc)"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->addWidget(m_text);
    column->addWidget(m_progress);
    column->addWidget(m_stop, 0, Qt::AlignRight);
    column->setSizeConstraint(QLayout::SetFixedSize);
    connect(m_stop, &QPushButton::clicked, this, &QDialog::reject);
    describeByHints(*this);
    m_sinceStart.start();
}

void WorkDialog::reject() {
    m_cancelled = true;
    m_stop->setEnabled(false);
    m_text->setText(QStringLiteral("Keskeytetään..."));
}

bool WorkDialog::step(const QString& text, qint64 done, qint64 total) {
    if (m_sinceEvents.isValid() && m_sinceEvents.elapsed() < kEventIntervalMs)
        return !m_cancelled;
    if (text != m_shown) {
        m_shown = text;
        m_sinceText.restart();
    }
    if (!m_cancelled)
        m_text->setText(text);
    m_progress->setRange(0, total > 0 ? kSteps : 0);
    if (total > 0)
        m_progress->setValue(static_cast<int>(done * kSteps / total));
    m_progress->setFormat(QStringLiteral("%p %") + remaining(m_sinceText.elapsed(), done, total));
    if (isHidden() && Dialogs::isInteractive() && m_sinceStart.elapsed() >= kAppearsAfterMs)
        show();
    // until it blocks the other windows they must get no key or click
    QCoreApplication::processEvents(isHidden() ? QEventLoop::ExcludeUserInputEvents
                                               : QEventLoop::AllEvents);
    m_sinceEvents.restart();
    return !m_cancelled;
}

}  // namespace framework
