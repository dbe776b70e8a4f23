#pragma once

namespace framework {

/// Loads Qt's Finnish translations (file dialogs, context menus, message buttons) if installed or
/// in "translations" beside the program, and adds what they lack; otherwise those texts stay
/// English.
void useFinnishTexts();

}  // namespace framework
