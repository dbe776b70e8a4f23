#include "framework/ui/value_edits.h"

#include <QAction>
#include <QCalendarWidget>
#include <QDragEnterEvent>
#include <QFocusEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QLocale>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QPixmap>
#include <QRegularExpressionValidator>
#include <QToolTip>
#include <QWidgetAction>
#include <cmath>

#include "framework/ui/close_deferral.h"

namespace framework {

void ExitEdit::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    switch (event->reason()) {
        case Qt::ActiveWindowFocusReason:
        case Qt::PopupFocusReason:
        case Qt::MenuBarFocusReason:
            return;
        default:
            commit();
            Q_EMIT exited();
    }
}

void TextEdit::dropEvent(QDropEvent* event) {
    if (!m_dropReplaces) {
        ExitEdit::dropEvent(event);
        return;
    }
    setText(event->mimeData()->text().trimmed());
    event->acceptProposedAction();
}

NumberEdit::NumberEdit(int maxDigits, QWidget* parent) : ExitEdit(parent), m_maxDigits(maxDigits) {
    setValidator(new QRegularExpressionValidator(
        QRegularExpression(QStringLiteral("[0-9]{0,%1}").arg(maxDigits)), this));
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setText(QStringLiteral("0"));
}

bool NumberEdit::isNumber(const QString& text) const {
    static const QRegularExpression kDigits(QStringLiteral("^[0-9]+$"));
    return text.size() <= m_maxDigits && kDigits.match(text).hasMatch();
}

void NumberEdit::setMayBeEmpty() {
    m_mayBeEmpty = true;
    clear();
}

void NumberEdit::commit() {
    if (!m_mayBeEmpty || !isEmpty())
        setValue(value());
}

QString NumberEdit::refusal(const QMimeData& dragged) const {
    const QString reason = m_dropCheck ? m_dropCheck(dragged) : QString();
    if (reason.isEmpty() && !isNumber(dragged.text().trimmed()))
        return QStringLiteral("Tähän kelpaa vain numero");
    return reason;
}

// A refused drag has the forbidden cursor; the text beside the edit says why.
void NumberEdit::dragEnterEvent(QDragEnterEvent* event) {
    if (!event->mimeData()->hasText())
        return;
    const QString reason = refusal(*event->mimeData());
    if (reason.isEmpty()) {
        event->acceptProposedAction();
        return;
    }
    QToolTip::showText(mapToGlobal(rect().bottomLeft()), reason, this);
    Q_EMIT dropRefused(reason);
}

void NumberEdit::dropEvent(QDropEvent* event) {
    if (!event->mimeData()->hasText() || !refusal(*event->mimeData()).isEmpty())
        return;
    setText(event->mimeData()->text().trimmed());
    event->acceptProposedAction();
}

DecimalEdit::DecimalEdit(int decimals, QWidget* parent)
    : ExitEdit(parent), m_decimals(decimals), m_typed(new QRegularExpressionValidator(this)) {
    setValidator(m_typed);
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    showValue(m_value);
    connect(this, &QLineEdit::textEdited, this, &DecimalEdit::readTyped);
}

void DecimalEdit::showValue(double value) {
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    const QString text = locale.toString(value, 'f', QLocale::FloatingPointShortest);
    const auto decimals = text.section(locale.decimalPoint(), 1).size();
    limitDecimals(qMax(m_decimals, static_cast<int>(decimals)));
    setText(text);
}

void DecimalEdit::limitDecimals(int decimals) {
    m_typed->setRegularExpression(
        // with the blanks and line end that a number copied from another window brings
        QRegularExpression(QStringLiteral("\\s*[0-9]{0,12}([.,][0-9]{0,%1})?\\s*").arg(decimals)));
}

void DecimalEdit::setValue(double value) {
    m_value = value;
    m_readable = true;
    showValue(value);
}

void DecimalEdit::readTyped(const QString& typed) {
    QString text = typed.trimmed();
    text.replace(QLatin1Char(','), QLatin1Char('.'));
    if (text.section(QLatin1Char('.'), 1).size() <= m_decimals)
        limitDecimals(m_decimals);  // no longer the text of a set value
    double number = 0.0;
    if (text.isEmpty())
        m_readable = m_emptyIsZero || m_mayBeEmpty;
    else
        number = text.toDouble(&m_readable);
    if (m_readable)
        m_value = number;
}

void DecimalEdit::setMayBeEmpty() {
    m_mayBeEmpty = true;
    setNothing();
}

void DecimalEdit::setNothing() {
    clear();
    m_value = 0.0;
    m_readable = true;
}

void DecimalEdit::commit() {
    if (m_readable && !(m_mayBeEmpty && isEmpty()))
        showValue(m_value);
}

namespace {

bool isDigit(const QKeyEvent& event) {
    return event.key() >= Qt::Key_0 && event.key() <= Qt::Key_9;
}

int altDigit(const QKeyEvent& event) {
    const bool onlyAlt = (event.modifiers() & ~Qt::KeypadModifier) == Qt::AltModifier;
    return onlyAlt && isDigit(event) ? event.key() - Qt::Key_0 : -1;
}

}  // namespace

void DecimalEdit::keyPressEvent(QKeyEvent* event) {
    const auto modifiers = event->modifiers();
    if (isDigit(*event) && (modifiers & Qt::AltModifier) && !(modifiers & Qt::ControlModifier)) {
        event->accept();  // else the digit would be typed into the text
        return;
    }
    ExitEdit::keyPressEvent(event);
}

void DecimalEdit::keyReleaseEvent(QKeyEvent* event) {
    const int digit = event->isAutoRepeat() ? -1 : altDigit(*event);
    if (digit >= 0) {
        event->accept();
        Q_EMIT altDigitReleased(digit);
        return;
    }
    ExitEdit::keyReleaseEvent(event);
}

namespace {

// The locale's short date format with a four-digit year.
QString dateFormat() {
    QString format = QLocale().dateFormat(QLocale::ShortFormat);
    if (!format.contains(QStringLiteral("yyyy")))
        format.replace(QStringLiteral("yy"), QStringLiteral("yyyy"));
    return format;
}

// A calendar icon in the text colour, visible on light and dark backgrounds.
QIcon calendarIcon(const QColor& colour) {
    QPixmap leaf(32, 32);
    leaf.setDevicePixelRatio(2);
    leaf.fill(Qt::transparent);
    QPainter painter(&leaf);
    painter.setPen(QPen(colour, 1));
    painter.drawRect(QRectF(2, 3, 12, 11));
    painter.fillRect(QRectF(2, 3, 12, 3.5), colour);
    for (const double y : {8.5, 11.0}) {
        for (const double x : {4.5, 7.5, 10.5})
            painter.fillRect(QRectF(x, y, 1.5, 1.5), colour);
    }
    return leaf;
}

}  // namespace

DateEdit::DateEdit(QWidget* parent, const QString& noDate) : ExitEdit(parent), m_noDate(noDate) {
    setPlaceholderText(QStringLiteral("pp.kk.vvvv"));
    QAction* calendar =
        addAction(calendarIcon(palette().color(QPalette::Text)), QLineEdit::TrailingPosition);
    calendar->setToolTip(QStringLiteral("Valitse kalenterista"));
    connect(calendar, &QAction::triggered, this, &DateEdit::pickFromCalendar);
}

QDate DateEdit::parse(const QString& text) {
    const QString trimmed = text.trimmed();
    for (const QString& format :
         {dateFormat(), QStringLiteral("d.M.yyyy"), QStringLiteral("yyyy-MM-dd")}) {
        const QDate date = QLocale().toDate(trimmed, format);
        if (date.isValid())
            return date;
    }
    return {};
}

void DateEdit::setDate(const QDate& date) {
    setText(date.isValid() ? QLocale().toString(date, dateFormat()) : QString());
}

void DateEdit::commit() {
    if (date().isValid())
        setDate(date());
}

void DateEdit::pickFromCalendar() {
    QMenu popup(this);
    auto* calendar = new QCalendarWidget(&popup);
    calendar->setFirstDayOfWeek(Qt::Monday);
    calendar->setGridVisible(true);
    if (date().isValid())
        calendar->setSelectedDate(date());
    auto* holder = new QWidgetAction(&popup);
    holder->setDefaultWidget(calendar);
    popup.addAction(holder);
    QAction* none = popup.addAction(m_noDate);
    connect(none, &QAction::triggered, this, [this] { clear(); });
    connect(calendar, &QCalendarWidget::clicked, this, [this, &popup](const QDate& picked) {
        setDate(picked);
        popup.close();
    });
    const CloseDeferral deferral(this);
    popup.exec(mapToGlobal(QPoint(0, height())));
}

}  // namespace framework
