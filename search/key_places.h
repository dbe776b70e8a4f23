#pragma once

#include <optional>
#include <vector>

#include "data/engine.h"

namespace search {

/// Which record stands at which place of a key, and the other way round, for all records of a
/// table. Remembers a record every kStep places (about 1 KB each) as they become known, so that a
/// place between them is found by counting along the key a short way.
class KeyPlaces {
  public:
    static constexpr qint64 kStep = 2048;

    explicit KeyPlaces(data::RecordFile& file, int key = 0) : m_file(&file), m_key(key) {}

    /// Begins anew: another key, or another number of records.
    void reset(int key);
    int key() const { return m_key; }
    qint64 count() const { return m_count; }

    /// Learns one more place. @return false when all are known.
    bool learn();

    /// The record at a place (0 is the first); nothing beyond the end.
    std::optional<data::StoredRecord> at(qint64 place);
    /// How many records stand before this one.
    qint64 placeOf(const data::StoredRecord& record);

    /// Compares two places: by key value, then in the order of insertion.
    int compare(const data::StoredRecord& a, const data::StoredRecord& b) const;
    /// The values of a record's key fields.
    data::KeyValues keyValues(const data::StoredRecord& record) const;

  private:
    data::RecordFile* m_file;
    int m_key = 0;
    qint64 m_count = 0;
    std::vector<data::StoredRecord> m_known;  // the records at 0, kStep, 2 x kStep ...
    bool m_complete = false;
};

}  // namespace search
