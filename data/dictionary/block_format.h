#pragma once

#include <QByteArrayView>

/// The fixed texts of a compiled dictionary block; each is five bytes with its terminating zero.
namespace data {

inline constexpr int kVersion = 2;
inline constexpr int kOldVersion = 1;
inline constexpr QByteArrayView kVersionSignature{"0002", 5};
inline constexpr QByteArrayView kEndSignature{"ABCD", 5};

}  // namespace data
