#include "vatchange/views/text_window.h"

#include <QClipboard>
#include <QDialog>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "framework/ui/close_deferral.h"
#include "framework/ui/dialogs.h"
#include "framework/ui/window_place.h"

namespace vatchange {

namespace {
constexpr QSize kSize(760, 460);
constexpr int kMargin = 14;
}  // namespace

void showText(QWidget* parent, const QString& title, const QStringList& lines, bool monospace) {
    const framework::CloseDeferral deferral(parent);
    QDialog window(parent);
    window.setObjectName(QStringLiteral("TekstiIkkuna"));
    window.setWindowTitle(title);
    auto* text = new QPlainTextEdit(lines.join(u'\n'), &window);
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text->setAccessibleName(title);
    if (monospace) {
        text->setLineWrapMode(QPlainTextEdit::NoWrap);
        text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    }
    auto* copy = new QPushButton(QStringLiteral("&Kopioi kaikki"), &window);
    copy->setAutoDefault(false);
    copy->setToolTip(QStringLiteral("Kopioi tekstin leikepöydälle"));
    auto* leave = new QPushButton(QStringLiteral("&Sulje"), &window);
    leave->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(copy);
    buttons->addStretch();
    buttons->addWidget(leave);
    auto* column = new QVBoxLayout(&window);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->addWidget(text, 1);
    column->addLayout(buttons);
    QObject::connect(copy, &QPushButton::clicked, &window,
                     [text] { QGuiApplication::clipboard()->setText(text->toPlainText()); });
    QObject::connect(leave, &QPushButton::clicked, &window, &QDialog::accept);
    framework::describeByHints(window);
    window.resize(kSize.boundedTo(window.screen()->availableSize() * 0.9));
    framework::rememberPlace(window, window.objectName());
    text->setFocus();
    window.exec();
}

}  // namespace vatchange
