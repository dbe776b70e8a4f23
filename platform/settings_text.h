#pragma once

#include <QString>

namespace platform {

/// The encoding of names and values in "aliases.ini". It is that of QSettings' INI files, which
/// earlier versions wrote and other programs may read; hand-written values that do not follow it
/// are taken literally.

/// Encodes a path "a/b" as a key: letters a to z, digits and "_-." as they are, "\" for "/", other
/// characters as %XX or %UXXXX.
QString writtenPath(const QString& path);
/// Decodes a key. Characters and "%" that are no valid encoding are taken literally.
QString plainPath(const QString& key);

/// Encodes a value: "\" before quotes and "\", control characters as "\n" or "\x1", and double
/// quotes around values with ";", "," or "=" or with blanks at an end.
QString writtenValue(const QString& value);
/// Decodes a value and removes quotes around it. Texts that writtenValue() cannot produce, such as
/// "KEY=VALUE;KEY=VALUE" or "C:\data", are returned as they are.
QString plainValue(const QString& text);

}  // namespace platform
