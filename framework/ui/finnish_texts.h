#pragma once

namespace framework {

/// Takes the toolkit's own texts (file dialogs, context menus of edits, buttons of messages) in
/// Finnish into use, where its translations are installed or stand in "translations" beside the
/// program; elsewhere those texts stay in the toolkit's language.
void useFinnishTexts();

}  // namespace framework
