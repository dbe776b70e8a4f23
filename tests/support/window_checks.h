#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QComboBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QMap>
#include <QStyleOptionComboBox>
#include <QTest>
#include <QWheelEvent>
#include <QWidget>
#include <cmath>
#include <set>

namespace test {

inline std::string described(const QWidget& widget) {
    return widget.metaObject()->className() + std::string(" ") + widget.objectName().toStdString();
}

/// No two controls share an Alt key.
inline void expectNoMnemonicClash(const QWidget& window) {
    QMap<QString, const QWidget*> taken;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        QString text;
        if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
            text = button->text();
        else if (const auto* box = qobject_cast<const QGroupBox*>(widget))
            text = box->title();
        else if (const auto* label = qobject_cast<const QLabel*>(widget))
            text = label->buddy() != nullptr ? label->text() : QString();
        const QString key = QKeySequence::mnemonic(text).toString();
        if (key.isEmpty() || !widget->isVisibleTo(&window))
            continue;
        EXPECT_FALSE(taken.contains(key)) << key.toStdString() << ": " << described(*widget)
                                          << " and " << described(*taken.value(key));
        taken.insert(key, widget);
    }
}

/// Every control in the tab order has an accessible name.
inline void expectAccessibleNames(const QWidget& window) {
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        if ((widget->focusPolicy() & Qt::TabFocus) == 0 || !widget->isVisibleTo(&window) ||
            widget->focusProxy() != nullptr ||
            widget->objectName().startsWith(QLatin1String("qt_")))
            continue;
        if (widget->parentWidget()->inherits("QComboBox") ||
            widget->parentWidget()->inherits("QAbstractSpinBox"))
            continue;  // part of another control
        const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(accessible, nullptr) << described(*widget);
        EXPECT_FALSE(accessible->text(QAccessible::Name).trimmed().isEmpty()) << described(*widget);
    }
}

/// No text of a label, button, group or choice is clipped, neither by the control's own size nor by
/// its parent's edge. Labels with the size policy Ignored shorten their text on purpose.
inline void expectNothingClipped(const QWidget& window) {
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        const auto* label = qobject_cast<const QLabel*>(widget);
        const auto* list = qobject_cast<const QComboBox*>(widget);
        if ((label == nullptr && list == nullptr && !widget->inherits("QAbstractButton") &&
             !widget->inherits("QGroupBox")) ||
            !widget->isVisibleTo(&window) || widget->parentWidget()->inherits("QLineEdit") ||
            widget->parentWidget()->inherits("QAbstractItemView") ||
            widget->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored)
            continue;
        const bool wraps = label != nullptr && label->wordWrap();
        const QSize least =
            wraps ? QSize(0, label->heightForWidth(widget->width())) : widget->minimumSizeHint();
        EXPECT_GE(widget->width(), list == nullptr ? least.width() : 0) << described(*widget);
        EXPECT_GE(widget->height(), least.height()) << described(*widget);
        EXPECT_TRUE(widget->parentWidget()->rect().contains(widget->geometry()))
            << described(*widget) << " ends outside " << described(*widget->parentWidget());
        if (list != nullptr && !list->isEditable()) {
            QStyleOptionComboBox option;
            option.initFrom(list);
            const QRect room = list->style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                             QStyle::SC_ComboBoxEditField, list);
            EXPECT_GE(room.width(), list->fontMetrics().horizontalAdvance(list->currentText()))
                << described(*widget) << ' ' << list->currentText().toStdString();
        }
    }
}

/// Contrast of two colours as WCAG defines it, 1 to 21.
inline double contrast(const QColor& a, const QColor& b) {
    const auto luminance = [](const QColor& colour) {
        const auto linear = [](double c) {
            return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
               0.0722 * linear(colour.blueF());
    };
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

/// Every enabled text can be read on its own background.
inline void expectReadable(const QWidget& window) {
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisibleTo(&window) || !widget->isEnabled())
            continue;
        const QPalette& colours = widget->palette();
        EXPECT_GE(contrast(colours.color(widget->foregroundRole()),
                           colours.color(widget->backgroundRole())),
                  4.5)
            << described(*widget);
    }
}

/// The tab key reaches every control that takes the focus and returns to the first.
inline void expectTabGoesAround(QWidget& window) {
    std::set<const QWidget*> reached;
    for (int i = 0; i < 200; ++i) {
        QWidget* focused = window.focusWidget();
        if (focused == nullptr || !reached.insert(focused).second)
            break;
        QTest::keyClick(focused, Qt::Key_Tab);
    }
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        const bool stop = (widget->focusPolicy() & Qt::TabFocus) == Qt::TabFocus &&
                          widget->isVisibleTo(&window) && widget->isEnabled() &&
                          widget->focusProxy() == nullptr && !widget->inherits("QRadioButton");
        if (stop && widget->parentWidget()->focusProxy() != widget) {
            EXPECT_TRUE(reached.count(widget) == 1) << "not reached: " << described(*widget);
        }
    }
}

/// Turns the mouse wheel by one notch, towards the next row of a list.
inline void turnWheel(QWidget& widget) {
    QWheelEvent notch(widget.rect().center(), widget.mapToGlobal(widget.rect().center()), {},
                      QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &notch);
}

}  // namespace test
