#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

#include "data/record/record_layout.h"

namespace data {

/// A compiled record filter: comparisons (=, <>, <, <=, >, >=) of a field with a quoted text,
/// number, true/false or date, joined by `and`, `or`, `not` and parentheses. Case is ignored, in
/// names, words and texts. A text that ends in "*" matches as a prefix (with = and <>). A date is
/// quoted as 'yyyy-mm-dd', 'yyyymmdd' or 'd.m.yyyy'. A quote inside a text is doubled. Numbers may
/// have a decimal comma or point. A boolean field by itself is a condition. An empty text accepts
/// all.
class Filter {
  public:
    /// @throws DataError(Syntax) with the 1-based column and what was expected;
    /// DataError(NoSuchField).
    Filter(const QString& expression, const RecordLayout& layout);
    ~Filter();
    Filter(Filter&&) noexcept;
    Filter& operator=(Filter&&) noexcept;

    bool accepts(const QByteArray& record) const;

    struct Node;

  private:
    std::unique_ptr<Node> m_root;
    const RecordLayout* m_layout;
};

}  // namespace data
