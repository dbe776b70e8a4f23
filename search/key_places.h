#pragma once

#include <optional>
#include <vector>

#include "data/engine/engine.h"

namespace search {

/// Maps positions in a key's order to records and back, for all records of a table. Keeps every
/// kStep-th record once known (about 1 KB each); others are found by counting a short distance
/// along the key from there.
class KeyPlaces {
  public:
    static constexpr qint64 kStep = 2048;

    explicit KeyPlaces(data::TableFile& file, int key = 0) : m_file(&file), m_key(key) {}

    /// Restarts with a key; counts the records again.
    void reset(int key);
    int key() const { return m_key; }
    qint64 count() const { return m_count; }

    /// Reads the next record to keep. @return false if none is left.
    bool learn();

    /// The record at a position (from 0); nothing beyond the end.
    std::optional<data::StoredRecord> at(qint64 place);
    /// Number of records before this one.
    qint64 placeOf(const data::StoredRecord& record);

    /// Key order: by key value, then by order of insertion.
    int compare(const data::StoredRecord& a, const data::StoredRecord& b) const;
    /// The values of a record's key fields.
    data::KeyValues keyValues(const data::StoredRecord& record) const;

  private:
    data::TableFile* m_file;
    int m_key = 0;
    qint64 m_count = 0;
    std::vector<data::StoredRecord> m_known;  // the records at 0, kStep, 2 x kStep ...
    bool m_complete = false;
};

}  // namespace search
