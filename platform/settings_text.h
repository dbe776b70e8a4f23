#pragma once

#include <QString>

namespace platform {

/// How the settings file "aliases.ini" spells names and values. It is the spelling of the toolkit's
/// own INI files, which earlier versions wrote and which others may read; what a person has
/// written into the file otherwise counts as it stands.

/// A path "a/b" as a key of the file: letters a to z, digits and "_-." as they are, "\" for "/",
/// other characters as %XX or %UXXXX.
QString writtenPath(const QString& path);
/// The path that a key of the file means; characters and "%" that spell nothing stand for
/// themselves.
QString plainPath(const QString& key);

/// A value as the file has it: "\" before quotes and "\", control characters as "\n" or "\x1", all
/// of it in double quotes where it holds ";", "," or "=" or has blanks at an end.
QString writtenValue(const QString& value);
/// The value that a text of the file means. Quotes around it come off. A text that writtenValue
/// does not give, as "KEY=VALUE;KEY=VALUE" or "C:\data", is the value itself.
QString plainValue(const QString& text);

}  // namespace platform
