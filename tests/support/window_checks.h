#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QCoreApplication>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QMap>
#include <QWheelEvent>
#include <QWidget>

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
inline void expectEveryControlSpeaks(const QWidget& window) {
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        if ((widget->focusPolicy() & Qt::TabFocus) == 0 || !widget->isVisibleTo(&window) ||
            widget->focusProxy() != nullptr ||
            widget->objectName().startsWith(QLatin1String("qt_")))
            continue;
        if (widget->parentWidget()->inherits("QComboBox") ||
            widget->parentWidget()->inherits("QAbstractSpinBox"))
            continue;  // part of another control
        const QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(spoken, nullptr) << described(*widget);
        EXPECT_FALSE(spoken->text(QAccessible::Name).trimmed().isEmpty()) << described(*widget);
    }
}

/// No label or button is smaller than its text needs.
inline void expectNothingClipped(const QWidget& window) {
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        const auto* label = qobject_cast<const QLabel*>(widget);
        const bool wraps = label != nullptr && label->wordWrap();
        if ((label == nullptr && qobject_cast<const QAbstractButton*>(widget) == nullptr) ||
            wraps || !widget->isVisibleTo(&window) ||
            widget->parentWidget()->inherits("QLineEdit") ||
            widget->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored)
            continue;
        EXPECT_GE(widget->width(), widget->minimumSizeHint().width()) << described(*widget);
        EXPECT_GE(widget->height(), widget->minimumSizeHint().height()) << described(*widget);
    }
}

/// A notch of the mouse wheel, towards the next row of a list.
inline void turnWheel(QWidget& widget) {
    QWheelEvent notch(widget.rect().center(), widget.mapToGlobal(widget.rect().center()), {},
                      QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &notch);
}

}  // namespace test
