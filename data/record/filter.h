#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

#include "data/record/record_layout.h"

namespace data {

/// A compiled record filter: comparisons (=, <>, <, <=, >, >=) of a field with a quoted text,
/// number, true/false or date, joined by `and`, `or`, `not` and parentheses (`not` binds strongest,
/// then `and`). Case is ignored, in names, words and texts; trailing blanks do not count. A text
/// that ends in "*" is compared with the beginning of the field only, so that = matches a prefix. A
/// date is quoted as 'yyyy-mm-dd', 'yyyymmdd' or 'd.m.yyyy' ('' is no date, and before all dates),
/// a time as 'hh:mm' or 'hh:mm:ss', a timestamp as date and time or as a date, which then stands
/// for the whole day. A quote inside a text is doubled. Numbers may have a decimal comma or point,
/// and are compared in the field's own precision; they may be quoted, and a number compared with a
/// text field counts as text. A boolean field by itself is a condition. An empty text accepts all.
class Filter {
  public:
    /// @throws DataError(Syntax) with the 1-based column and what was expected, in Finnish ("kohta
    ///         7: odotettiin arvoa"); DataError(NoSuchField) with the name and column.
    Filter(const QString& expression, const RecordLayout& layout);
    ~Filter();
    Filter(Filter&&) noexcept;
    Filter& operator=(Filter&&) noexcept;

    bool accepts(const QByteArray& record) const;

    struct Node;

  private:
    std::unique_ptr<Node> m_root;  // null accepts all
    const RecordLayout* m_layout;
};

}  // namespace data
