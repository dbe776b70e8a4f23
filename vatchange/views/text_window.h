#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

namespace vatchange {

/// Shows lines of text, which can be selected and copied, until the user closes the window.
/// `monospace`: lines of a log.
void showText(QWidget* parent, const QString& title, const QStringList& lines,
              bool monospace = false);

}  // namespace vatchange
