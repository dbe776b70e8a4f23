#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

/// Opens a file for appending (made when missing), writes the bytes in one call of the operating
/// system and closes it: lines of several programs stand whole, one after another.
/// @return the system's error text; empty when all was written.
QString appendToFile(const QString& fileName, const QByteArray& bytes);

}  // namespace platform
