#include "data/record/filter.h"

#include <algorithm>
#include <limits>

#include "data/record/filter_node.h"
#include "data/record/record_codec.h"
#include "data/windows1252.h"

namespace data {

namespace {

using Node = Filter::Node;

template <typename T>
int order(T a, T b) {
    return a < b ? -1 : (a > b ? 1 : 0);
}

bool holds(Node::Op op, int comparison) {
    switch (op) {
        case Node::Op::Equal:
            return comparison == 0;
        case Node::Op::NotEqual:
            return comparison != 0;
        case Node::Op::Less:
            return comparison < 0;
        case Node::Op::LessOrEqual:
            return comparison <= 0;
        case Node::Op::Greater:
            return comparison > 0;
        case Node::Op::GreaterOrEqual:
            return comparison >= 0;
    }
    return false;
}

int compareText(QByteArrayView text, const Node& node) {
    size_t length = static_cast<size_t>(text.size());
    while (length > 0 && text[static_cast<qsizetype>(length) - 1] == ' ')
        --length;
    if (node.isPrefix)
        length = std::min(length, node.weights.size());
    const size_t common = std::min(length, node.weights.size());
    for (size_t i = 0; i < common; ++i) {
        const quint16 weight = kCaseFoldWeight[static_cast<uchar>(text[static_cast<qsizetype>(i)])];
        if (weight != node.weights[i])
            return order(weight, node.weights[i]);
    }
    return order(length, node.weights.size());
}

qint64 dayOf(const QDate& date) {
    return date.isValid() ? date.toJulianDay() : std::numeric_limits<qint64>::min();
}

qint64 millisecondsOf(const QTime& time) {
    return time.isValid() ? time.msecsSinceStartOfDay() : -1;
}

int compareTimestamp(const QDateTime& value, const Node& node) {
    const int byDay = order(dayOf(value.isValid() ? value.date() : QDate()), node.integer);
    if (byDay != 0 || node.wholeDay)
        return byDay;
    return order(millisecondsOf(value.time()), node.milliseconds);
}

bool isInteger(const TFieldCacheItem& field) {
    return field.kind() != Kind::Float;
}

bool accepted(const Node& node, const RecordLayout& layout, const uchar* record) {
    const auto each = [&](const Node& child) { return accepted(child, layout, record); };
    switch (node.type) {
        case Node::Type::And:
            return std::all_of(node.children.begin(), node.children.end(), each);
        case Node::Type::Or:
            return std::any_of(node.children.begin(), node.children.end(), each);
        case Node::Type::Not:
            return !each(node.children.front());
        default:
            break;
    }
    const TFieldCacheItem& field = layout.field(node.field);
    int comparison = 0;
    switch (node.type) {
        case Node::Type::Integer:
            comparison = order(readInteger(field, record), node.integer);
            break;
        case Node::Type::Number: {
            const double value = isInteger(field) ? static_cast<double>(readInteger(field, record))
                                                  : readFloat(field, record);
            comparison = order(value, node.number);
            break;
        }
        case Node::Type::Text:
            comparison = compareText(readTextBytes(field, record), node);
            break;
        case Node::Type::Date:
            comparison = order(dayOf(readDate(field, record)), node.integer);
            break;
        case Node::Type::Time:
            comparison = order(millisecondsOf(readTime(field, record)), node.integer);
            break;
        default:
            comparison = compareTimestamp(readTimestamp(field, record), node);
            break;
    }
    return holds(node.op, comparison);
}

}  // namespace

Filter::Filter(const QString& expression, const RecordLayout& layout) : m_layout(&layout) {
    if (!expression.trimmed().isEmpty())
        m_root = std::make_unique<Node>(parseFilter(expression, layout));
}

Filter::~Filter() = default;
Filter::Filter(Filter&&) noexcept = default;
Filter& Filter::operator=(Filter&&) noexcept = default;

bool Filter::accepts(const QByteArray& record) const {
    Q_ASSERT(record.size() >= m_layout->recordLength());
    return !m_root ||
           accepted(*m_root, *m_layout, reinterpret_cast<const uchar*>(record.constData()));
}

}  // namespace data
