#pragma once

#include <QLayout>
#include <QLineEdit>
#include <functional>

namespace framework {

/// A folder's edit with a button "Selaa..." (object name "SelaaButton") beside it.
QLayout* folderRow(QLineEdit* edit, QWidget* window, std::function<void()> browse);

}  // namespace framework
