#pragma once

#include <vector>

namespace data {

/// One segment of a key: a field and how it is ordered.
struct KeySegment {
    int fieldIndex = 0;  ///< index into the table's fields
    bool ignoreCase = false;
    bool descending = false;
};

/// A numbered key of a table.
struct KeyDef {
    int number = 0;
    bool unique = false;
    std::vector<KeySegment> segments;
};

}  // namespace data
