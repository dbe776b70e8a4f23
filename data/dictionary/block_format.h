#pragma once

#include <QByteArrayView>

/// Fixed texts of a compiled dictionary block: five bytes each, including the terminating zero.
namespace data {

inline constexpr int kVersion = 2;
inline constexpr int kOldVersion = 1;
inline constexpr QByteArrayView kVersionSignature{"0002", 5};
inline constexpr QByteArrayView kEndSignature{"ABCD", 5};

}  // namespace data
