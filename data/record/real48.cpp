#include <algorithm>
#include <cmath>

#include "data/record/record_codec.h"

namespace data {

namespace {

constexpr int kBias = 129;
constexpr int kFractionBits = 39;

}  // namespace

double real48ToDouble(const uchar* bytes) {
    if (bytes[0] == 0)
        return 0.0;
    quint64 fraction = bytes[5] & 0x7FU;
    for (int i = 4; i >= 1; --i)
        fraction = fraction << 8U | bytes[i];
    const auto significand = static_cast<double>(fraction | quint64{1} << kFractionBits);
    const double value = std::ldexp(significand, bytes[0] - kBias - kFractionBits);
    return (bytes[5] & 0x80U) != 0 ? -value : value;
}

bool doubleToReal48(double value, uchar* bytes) {
    if (!std::isfinite(value))
        return false;
    int exponent = 0;
    const double half = std::frexp(std::abs(value), &exponent);  // [0.5, 1) x 2^exponent
    // 40 significant bits; the rounding mode is to nearest, ties to even.
    auto significand = static_cast<quint64>(std::nearbyint(std::ldexp(half, kFractionBits + 1)));
    if (significand >> (kFractionBits + 1) != 0) {
        significand >>= 1U;
        ++exponent;
    }
    int stored = exponent - 1 + kBias;
    if (stored > 255)
        return false;
    if (stored < 1) {
        // No denormals: rounds to zero or to the smallest number, 2^-128.
        const bool up = std::abs(value) > std::ldexp(1.0, -129);
        significand = up ? quint64{1} << kFractionBits : 0;
        stored = 1;
    }
    if (significand == 0) {
        std::fill(bytes, bytes + 6, uchar{0});
        return true;
    }
    bytes[0] = static_cast<uchar>(stored);
    for (int i = 1; i <= 5; ++i)
        bytes[i] = static_cast<uchar>(significand >> (8 * (i - 1)) & 0xFFU);
    bytes[5] = static_cast<uchar>((bytes[5] & 0x7FU) | (value < 0 ? 0x80U : 0U));
    return true;
}

}  // namespace data
