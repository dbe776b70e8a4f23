#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "engines/embedded/column_codec.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/functions.h"
#include "engines/embedded/virtual_table.h"

namespace engines::embedded {

namespace {

// Costs: a seek; per row an index entry, a record in stored order, a record looked up from an index
// entry.
constexpr double kSeekCost = 5;
constexpr double kImageCost = 0.5;
constexpr double kLongImage = 100;  // index entry length (bytes) that doubles its cost
constexpr double kRecordCost = 2;
constexpr double kLookupCost = 3;

// Cost per record of building an index that serves many lookups.
constexpr double kFieldCost = 0.1;

// Estimated number of records per value of a key's leading fields; they are not counted.
constexpr double kRowsOfWholeKey = 10;

struct Candidate {
    ScanPlan plan;
    std::vector<int> arguments;  // constraint numbers, in the order of the scan's arguments
    double rows = 0;
    double cost = 0;
    bool unique = false;
    bool ordered = false;
};

/// While SQLite plans a statement it cannot reload its schema. If another program has changed that
/// (the first run makes the journal's tables), any number will do: the plan is made again before
/// the statement runs.
double recordsOf(StoredTable& table) {
    constexpr double kUnknown = 10000;
    try {
        return std::max<double>(1, static_cast<double>(table.estimatedCount()));
    } catch (const DataError& error) {
        if ((error.nativeCode() & 0xFF) != SQLITE_SCHEMA)
            throw;
        return kUnknown;
    }
}

class Planner {
  public:
    Planner(StoredTable& table, sqlite3_index_info* info)
        : m_table(table), m_info(info), m_records(recordsOf(table)) {}

    int choose();

  private:
    int findConstraint(const SegmentImage& segment, bool equality, bool upper) const;
    bool collationFits(int constraint, const SegmentImage& segment, bool equality) const;
    Candidate byKey(int key) const;
    Candidate byId() const;
    bool oneId(Candidate& candidate) const;
    bool byField(Candidate& candidate) const;
    bool keyHoldsColumns(int key) const;
    bool orders(int key, int equalCount, bool& backward) const;
    void apply(const Candidate& candidate);

    StoredTable& m_table;
    sqlite3_index_info* m_info;
    double m_records;
};

bool isWholeNumber(const TFieldCacheItem& field) {
    const Kind kind = field.kind();
    return kind == Kind::SmallInt || kind == Kind::Integer || kind == Kind::Unsigned ||
           kind == Kind::LargeInt;
}

bool isEquality(unsigned char op) {
    return op == SQLITE_INDEX_CONSTRAINT_EQ;
}

bool isUpper(unsigned char op) {
    return op == SQLITE_INDEX_CONSTRAINT_LT || op == SQLITE_INDEX_CONSTRAINT_LE;
}

bool isLower(unsigned char op) {
    return op == SQLITE_INDEX_CONSTRAINT_GT || op == SQLITE_INDEX_CONSTRAINT_GE;
}

bool Planner::collationFits(int constraint, const SegmentImage& segment, bool equality) const {
    if (segment.form != ImageForm::Text && segment.form != ImageForm::FoldedText &&
        segment.form != ImageForm::Date)
        return true;
    const char* collation = sqlite3_vtab_collation(m_info, constraint);
    const TFieldCacheItem& field = m_table.layout().field(segment.fieldIndex);
    const char* own = columnCollation(m_table.name(), field);
    if (segment.form == ImageForm::FoldedText)  // finds too many; SQLite filters
        return equality && (sqlite3_stricmp(collation, own) == 0 ||
                            sqlite3_stricmp(collation, kNameCollation) == 0 ||
                            sqlite3_stricmp(collation, "BINARY") == 0);
    if (sqlite3_stricmp(own, kNameCollation) == 0)
        return false;  // a case-sensitive key does not find names that differ in case
    return sqlite3_stricmp(collation, own) == 0;
}

int Planner::findConstraint(const SegmentImage& segment, bool equality, bool upper) const {
    for (int i = 0; i < m_info->nConstraint; ++i) {
        const auto& constraint = m_info->aConstraint[i];
        if (constraint.usable == 0 || constraint.iColumn != segment.fieldIndex)
            continue;
        const bool wanted = equality ? isEquality(constraint.op)
                            : upper  ? isUpper(constraint.op)
                                     : isLower(constraint.op);
        if (wanted && collationFits(i, segment, equality))
            return i;
    }
    return -1;
}

bool Planner::keyHoldsColumns(int key) const {
    const KeyImage& image = m_table.image(key);
    sqlite3_uint64 held = 0;
    for (size_t i = 0; i < image.segments().size(); ++i) {
        const int field = image.segments()[i].fieldIndex;
        if (field < 63 && image.isReversible(static_cast<int>(i)))
            held |= sqlite3_uint64{1} << field;
    }
    return (m_info->colUsed & ~held) == 0;
}

// Whether a scan of the key returns the requested order; fields compared for equality may be left
// out.
bool Planner::orders(int key, int equalCount, bool& backward) const {
    const auto& segments = m_table.image(key).segments();
    if (m_info->nOrderBy == 0)
        return false;
    size_t segment = 0;
    for (int term = 0; term < m_info->nOrderBy; ++term) {
        const auto& order = m_info->aOrderBy[term];
        while (segment < segments.size() && segments[segment].fieldIndex != order.iColumn &&
               static_cast<int>(segment) < equalCount)
            ++segment;
        if (segment == segments.size() || segments[segment].fieldIndex != order.iColumn)
            return false;
        const SegmentImage& image = segments[segment];
        const char* own = columnCollation(m_table.name(), m_table.layout().field(image.fieldIndex));
        const bool sameOrder = image.form == ImageForm::Integer ||
                               image.form == ImageForm::Unsigned ||
                               image.form == ImageForm::Boolean || image.form == ImageForm::Date ||
                               (image.form == ImageForm::Text && own == kTextCollation);
        if (!sameOrder)
            return false;
        const bool down = (order.desc != 0) != image.descending;
        if (term > 0 && down != backward)
            return false;
        backward = down;
        ++segment;
    }
    return true;
}

Candidate Planner::byKey(int key) const {
    Candidate candidate;
    candidate.plan.key = key;
    const auto& segments = m_table.image(key).segments();
    const size_t count = segments.size();
    size_t equal = 0;
    for (; equal < count; ++equal) {
        const int constraint = findConstraint(segments[equal], true, false);
        if (constraint < 0)
            break;
        candidate.arguments.push_back(constraint);
    }
    candidate.plan.equalCount = static_cast<int>(equal);
    if (equal < count) {
        const int low = findConstraint(segments[equal], false, false);
        const int high = findConstraint(segments[equal], false, true);
        if (low >= 0) {
            candidate.arguments.push_back(low);
            candidate.plan.low = m_info->aConstraint[low].op == SQLITE_INDEX_CONSTRAINT_GE ? 2 : 1;
        }
        if (high >= 0) {
            candidate.arguments.push_back(high);
            candidate.plan.high =
                m_info->aConstraint[high].op == SQLITE_INDEX_CONSTRAINT_LE ? 2 : 1;
        }
    }
    candidate.unique = equal == count && m_table.keys()[static_cast<size_t>(key)].unique;
    candidate.rows = m_records;
    if (candidate.unique)
        candidate.rows = 1;
    else if (equal == count)
        candidate.rows = std::min(m_records, kRowsOfWholeKey);
    else if (equal > 0)
        candidate.rows =
            std::pow(m_records, static_cast<double>(count - equal) / static_cast<double>(count));
    if (candidate.plan.low != 0)
        candidate.rows /= 4;
    if (candidate.plan.high != 0)
        candidate.rows /= 4;
    candidate.rows = std::max(1.0, candidate.rows);
    candidate.plan.imageOnly = keyHoldsColumns(key);
    candidate.ordered = orders(key, candidate.plan.equalCount, candidate.plan.backward);
    if (!candidate.ordered)
        candidate.plan.backward = false;
    const bool seeks = !candidate.arguments.empty();
    const double imageCost = kImageCost * (1 + m_table.image(key).length() / kLongImage);
    candidate.cost = (seeks ? kSeekCost : 0) +
                     candidate.rows * (candidate.plan.imageOnly ? imageCost : kLookupCost);
    return candidate;
}

Candidate Planner::byId() const {
    Candidate candidate;
    candidate.rows = m_records;
    candidate.cost = m_records * kRecordCost;
    return candidate;
}

bool Planner::oneId(Candidate& candidate) const {
    for (int i = 0; i < m_info->nConstraint; ++i) {
        const auto& constraint = m_info->aConstraint[i];
        if (constraint.usable == 0 || constraint.iColumn != -1 || !isEquality(constraint.op))
            continue;
        candidate.plan.key = ScanPlan::kOneId;
        candidate.arguments = {i};
        candidate.rows = 1;
        candidate.cost = kSeekCost;
        candidate.unique = true;
        return true;
    }
    return false;
}

// An integer field without a key, compared with a value that changes per row of an outer loop.
bool Planner::byField(Candidate& candidate) const {
    for (int i = 0; i < m_info->nConstraint; ++i) {
        const auto& constraint = m_info->aConstraint[i];
        sqlite3_value* constant = nullptr;
        if (constraint.usable == 0 || constraint.iColumn < 0 || !isEquality(constraint.op) ||
            !isWholeNumber(m_table.layout().field(constraint.iColumn)) ||
            sqlite3_vtab_rhs_value(m_info, i, &constant) == SQLITE_OK)
            continue;
        candidate = {};
        candidate.plan.key = ScanPlan::kByField;
        candidate.plan.field = constraint.iColumn;
        candidate.arguments = {i};
        candidate.rows = std::min(m_records, kRowsOfWholeKey);
        candidate.cost = kSeekCost + candidate.rows * kLookupCost + m_records * kFieldCost;
        return true;
    }
    return false;
}

void Planner::apply(const Candidate& candidate) {
    // An integer is found exactly while all segments before it are integers too; otherwise SQLite
    // checks again.
    bool exact = true;
    int argument = 0;
    for (const int constraint : candidate.arguments) {
        auto& usage = m_info->aConstraintUsage[constraint];
        usage.argvIndex = ++argument;
        const int column = m_info->aConstraint[constraint].iColumn;
        if (column < 0)
            continue;
        const TFieldCacheItem& field = m_table.layout().field(column);
        exact = exact && candidate.plan.key != ScanPlan::kByField &&
                (isWholeNumber(field) || field.kind() == Kind::Boolean) && field.storedLength < 8;
        usage.omit = exact ? 1 : 0;
    }
    m_info->idxNum = candidate.plan.packed();
    m_info->orderByConsumed = candidate.ordered ? 1 : 0;
    m_info->estimatedCost = candidate.cost;
    m_info->estimatedRows = std::max<sqlite3_int64>(1, static_cast<sqlite3_int64>(candidate.rows));
    m_info->idxFlags = candidate.unique ? SQLITE_INDEX_SCAN_UNIQUE : 0;
}

int Planner::choose() {
    Candidate best = byId();
    if (!oneId(best)) {
        // Includes the cost of sorting if the plan does not return the requested order.
        const auto total = [this](const Candidate& c) {
            const bool sorts = m_info->nOrderBy > 0 && !c.ordered;
            return c.cost + (sorts ? c.rows * std::log2(c.rows + 1) * 0.5 : 0);
        };
        for (int key = 0; key < static_cast<int>(m_table.keys().size()); ++key) {
            const Candidate candidate = byKey(key);
            const bool useful =
                !candidate.arguments.empty() || candidate.ordered || candidate.plan.imageOnly;
            if (useful && total(candidate) < total(best))
                best = candidate;
        }
        Candidate candidate;
        if (byField(candidate) && total(candidate) < total(best))
            best = candidate;
    }
    apply(best);
    return SQLITE_OK;
}

}  // namespace

int ScanPlan::packed() const {
    if (key == kByField)
        return field << 8;
    return (key + 3) | equalCount << 8 | low << 16 | high << 18 | int{backward} << 20 |
           int{imageOnly} << 21;
}

ScanPlan ScanPlan::unpacked(int number) {
    ScanPlan plan;
    plan.key = (number & 0xFF) - 3;
    if (plan.key == kByField) {
        plan.field = number >> 8;
        return plan;
    }
    plan.equalCount = number >> 8 & 0xFF;
    plan.low = number >> 16 & 3;
    plan.high = number >> 18 & 3;
    plan.backward = (number >> 20 & 1) != 0;
    plan.imageOnly = (number >> 21 & 1) != 0;
    return plan;
}

int bestIndex(StoredTable& table, sqlite3_index_info* info) {
    return Planner(table, info).choose();
}

}  // namespace engines::embedded
