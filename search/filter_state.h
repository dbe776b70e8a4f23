#pragma once

#include <QString>
#include <optional>

#include "search/view_rows.h"

namespace search {

/// Restrictions of a search window's rows: the caller's base filter, the user's filter or record
/// search, a range of the key, passive records. A plain value: the window changes a copy and keeps
/// it if the rows could be shown.
class FilterState {
  public:
    /// Ends a record search, as every new filter expression does.
    void setBaseFilter(const QString& expression);
    const QString& baseFilter() const { return m_base; }
    void setShowPassive(bool show) { m_showPassive = show; }
    bool showPassive() const { return m_showPassive; }

    /// `words`: what the user is shown instead of the expression.
    void setUserFilter(const QString& expression, const QString& words = {});
    /// Empty without a filter, and during a record search.
    QString userFilter() const;
    /// The rows found by a record search, described in words; replaces the user's filter.
    void setRecordSearch(const QString& words);
    bool isRecordSearch() const { return m_source == Source::RecordSearch; }

    void setRange(KeyRange range, const QString& words);
    void clearRange() { m_range.reset(); }
    const std::optional<KeyRange>& range() const { return m_range; }

    /// Whether the user has restricted the rows.
    bool isRestricted() const;
    /// Back to the base filter.
    void clear();

    /// The expression for the table's filter.
    QString expression() const;
    /// The user's restrictions, for the line below the rows.
    QString description() const;

  private:
    enum class Source { None, Expression, RecordSearch };

    QString m_base;
    bool m_showPassive = false;
    Source m_source = Source::None;
    QString m_expression;  // the user's filter
    QString m_words;
    std::optional<KeyRange> m_range;
    QString m_rangeWords;
};

}  // namespace search
