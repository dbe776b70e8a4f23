#pragma once

#include <QString>
#include <cstdint>

namespace data {

/// How many names (hard links) a file has in its file system; symbolic links are followed. 0: the
/// file cannot be asked, 1: the usual, also where the file system has no links.
std::uint64_t linkCount(const QString& fileName);

}  // namespace data
