#pragma once

#include <QString>

namespace platform {

/// An installation's own table dictionaries: the file "SANAKIRJA.DAT" (compiled blocks one after
/// another, as `zavdb dictionary` writes them) beside the program, else in the user's settings
/// folder. Empty when there is none.
QString dictionaryModuleName();

/// Makes that file the first place where dictionaries are looked up. Without one nothing changes.
/// @throws data::DataError naming the file when it cannot be read or is damaged.
void loadDictionaryModule();

}  // namespace platform
