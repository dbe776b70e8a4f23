#include "framework/ui/splash.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QFont>
#include <QPixmap>
#include <QVBoxLayout>

namespace framework {

TZAVLogoForm::TZAVLogoForm()
    : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint),
      m_title(new QLabel(this)),
      m_version(new QLabel(this)),
      m_progress(new QProgressBar(this)) {
    setObjectName(QStringLiteral("ZAVLogoForm"));
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    auto* frame = new QFrame(this);
    frame->setFrameStyle(QFrame::Box | QFrame::Plain);
    frame->setBackgroundRole(QPalette::Base);
    frame->setAutoFillBackground(true);
    whole->addWidget(frame);
    auto* column = new QVBoxLayout(frame);
    column->setContentsMargins(40, 32, 40, 32);
    column->setSpacing(12);

    const QString picture = QCoreApplication::applicationDirPath() + QStringLiteral("/ZAVLOGO.JPG");
    if (QFileInfo::exists(picture)) {
        const QPixmap logo(picture);
        if (!logo.isNull()) {
            auto* label = new QLabel(this);
            label->setPixmap(logo.width() > 480 ? logo.scaledToWidth(480, Qt::SmoothTransformation)
                                                : logo);
            column->addWidget(label, 0, Qt::AlignCenter);
        }
    }
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * 1.8);
    large.setBold(true);
    m_title->setFont(large);
    column->addWidget(m_title, 0, Qt::AlignCenter);
    column->addWidget(m_version, 0, Qt::AlignCenter);
    m_progress->setTextVisible(false);
    m_progress->setFixedSize(360, 8);
    column->addSpacing(8);
    column->addWidget(m_progress, 0, Qt::AlignCenter);
}

void TZAVLogoForm::AsetaTiedot(const QString& title, const QString& version) {
    setWindowTitle(title);
    m_title->setText(title);
    m_version->setText(version);
}

void TZAVLogoForm::showNow() {
    show();
    repaint();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

std::shared_ptr<void> showNotice(const QString& text) {
    auto notice = std::make_shared<QLabel>(text, nullptr, Qt::SplashScreen);
    notice->setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    notice->setMargin(16);
    notice->show();
    notice->repaint();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    return notice;
}

}  // namespace framework
