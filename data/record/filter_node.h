#pragma once

#include <vector>

#include "data/record/filter.h"

namespace data {

/// A node of a compiled filter: and/or/not of other nodes, or the comparison of a field with a
/// constant in stored form.
struct Filter::Node {
    enum class Type { And, Or, Not, Integer, Number, Text, Date, Time, Timestamp };
    enum class Op { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };
    /// Weight of a character outside Windows-1252: sorts last and equals none.
    static constexpr quint16 kForeign = 256;

    Type type = Type::And;
    std::vector<Node> children;

    int field = -1;
    Op op = Op::Equal;
    qint64 integer = 0;            ///< integers, booleans, Julian day, milliseconds of the day
    double number = 0;             ///< floats, and integers compared with a fraction
    qint64 milliseconds = 0;       ///< a timestamp's time of day
    bool wholeDay = false;         ///< a timestamp compared with a date
    bool isPrefix = false;         ///< a text that ended in "*"
    std::vector<quint16> weights;  ///< a text's case folding weights
};

/// Parses a filter expression. @throws as Filter's constructor.
Filter::Node parseFilter(const QString& expression, const RecordLayout& layout);

}  // namespace data
