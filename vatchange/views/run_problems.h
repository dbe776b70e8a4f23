#pragma once

#include <QWidget>
#include <functional>

namespace vatchange {

/// Runs a window's handler and shows its exception in Finnish, also that of a refused undo or of a
/// file that cannot be written. @return false if it threw
bool reportProblems(QWidget* parent, const std::function<void()>& work);

}  // namespace vatchange
