#pragma once

#include <QByteArray>

#include "engines/data_names.h"
#include "engines/shops/file_stat.h"

namespace engines::shops {

/// The order of one key as the shops' engine keeps it, over raw record bytes.
class KeyOrder {
  public:
    explicit KeyOrder(KeyStat key) : m_key(std::move(key)) {}

    const KeyStat& stat() const { return m_key; }
    int segmentCount() const { return static_cast<int>(m_key.segments.size()); }

    /// The key's bytes in a record, segment after segment, as the key buffer takes them.
    QByteArray keyOf(const QByteArray& record) const;

    /// As keyOf(), with the segments from `first` on holding what stands at an end of the key's
    /// order: below everything (`high` false) or above.
    QByteArray filled(const QByteArray& record, int first, bool high) const;

    /// Compares the leading `segments` of two records in the key's order.
    int compare(const QByteArray& left, const QByteArray& right, int segments) const;

  private:
    KeyStat m_key;
};

}  // namespace engines::shops
