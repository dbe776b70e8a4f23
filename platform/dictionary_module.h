#pragma once

#include <QString>

namespace platform {

/// Full path of the installation's own table dictionaries "SANAKIRJA.DAT" (compiled blocks, as
/// written by `zavdb dictionary`): beside the program, else in the user's settings folder. Empty if
/// there is none.
QString dictionaryModuleName();

/// Makes dictionary look-ups try that file first. Does nothing without one.
/// @throws data::DataError naming the file if it cannot be read or is damaged.
void loadDictionaryModule();

}  // namespace platform
