#pragma once

#include <QStringView>
#include <QtGlobal>
#include <span>

namespace tools::demo {

/// splitmix64: the standard library's distributions differ between platforms, the demo company must
/// not.
class Random {
  public:
    /// Random numbers of one item: `stream` is its kind, `index` its number. Items are independent,
    /// so no state is kept.
    Random(quint64 seed, quint64 stream, quint64 index)
        : m_state(mix(mix(seed * 0x9E3779B97F4A7C15ULL + stream) + index)) {}

    quint64 next() {
        m_state += 0x9E3779B97F4A7C15ULL;
        return mix(m_state);
    }
    /// A whole number from `low` to `high`, both included.
    int between(int low, int high) {
        const auto count = static_cast<quint64>(high - low) + 1;
        return low + static_cast<int>(next() % count);
    }
    bool chance(int percent) { return between(1, 100) <= percent; }
    bool perMille(int count) { return between(1, 1000) <= count; }

    template <typename T, size_t N>
    const T& pick(const T (&list)[N]) {
        return list[static_cast<size_t>(between(0, static_cast<int>(N) - 1))];
    }

  private:
    static quint64 mix(quint64 z) {
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }
    quint64 m_state;
};

}  // namespace tools::demo
