#pragma once

#include <QFormLayout>
#include <QLineEdit>
#include <functional>

namespace framework {

/// Adds the row of a folder: the edit with a button "Selaa..." (object name "SelaaButton").
void addFolderRow(QFormLayout& fields, const QString& title, QLineEdit* edit,
                  std::function<void()> browse);

}  // namespace framework
