#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

#include "data/record/record_layout.h"

namespace data {

/// A compiled record filter: comparisons (=, <>, <, <=, >, >=) of a field with a quoted text,
/// number, true/false or date, joined by `and`, `or`, `not` and parentheses (`not` binds strongest,
/// then `and`). An empty filter accepts all records. Case of names, words and texts is ignored, and
/// so are trailing blanks. A text ending in "*" is compared with the beginning of the field only,
/// so that = matches a prefix. Dates are quoted as 'yyyy-mm-dd', 'yyyymmdd' or 'd.m.yyyy' ('' is no
/// date, before all dates), times as 'hh:mm' or 'hh:mm:ss', timestamps as date and time or as a
/// date, meaning the whole day. A quote inside a text is doubled. Numbers may have a decimal comma
/// or point, may be quoted, and are compared in the field's precision; a number compared with a
/// text field is a text. A boolean field is a condition by itself.
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
