#pragma once

#include <QByteArray>

#include "engines/data_names.h"
#include "engines/shops/file_stat.h"

namespace engines::shops {

/// The shops' engine's order of one key, on raw record bytes.
class KeyOrder {
  public:
    explicit KeyOrder(KeyStat key) : m_key(std::move(key)) {}

    const KeyStat& stat() const { return m_key; }
    int segmentCount() const { return static_cast<int>(m_key.segments.size()); }

    /// Returns a record's key bytes, segment after segment, in the key buffer's form.
    QByteArray keyOf(const QByteArray& record) const;

    /// As keyOf(), with the segments from `first` on set to the lowest (`high` false) or highest
    /// value of the key's order.
    QByteArray filled(const QByteArray& record, int first, bool high) const;

    /// Compares the leading `segments` of two records in the key's order.
    int compare(const QByteArray& left, const QByteArray& right, int segments) const;

  private:
    KeyStat m_key;
};

}  // namespace engines::shops
