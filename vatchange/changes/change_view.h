#pragma once

#include <QString>
#include <functional>
#include <vector>

#include "vatchange/changes/change_list.h"

namespace vatchange {

/// Which rows of a list are shown. Conditions are joined by "and".
struct ChangeFilter {
    FindingSet findings = 0;  ///< any of these; 0: all rows
    int table = -1;           ///< index into ChangeList::tables(); -1: all
    int level = 0;            ///< price level 1..9; 0: all
    QString text;  ///< words, each part of product number, name, key or field; case ignored

    bool operator==(const ChangeFilter&) const = default;
};

enum class ChangeColumn {
    Product,
    Name,
    Table,
    Key,
    Field,
    Before,
    After,
    Difference,
    Percent,
    Finding
};
inline constexpr int kChangeColumns = 10;

/// Gets the share done (0 to 1); false cancels.
using ViewProgress = std::function<bool(double)>;

/// The rows of a list under a filter, in an order. A million rows: 4 MB, a fraction of a second for
/// each filter or order.
class ChangeView {
  public:
    explicit ChangeView(const ChangeList& list) : m_list(list) {}

    int count() const { return static_cast<int>(m_rows.size()); }
    /// The list's row at a place of the view.
    int row(int place) const { return static_cast<int>(m_rows[static_cast<size_t>(place)]); }

    /// Adds the rows that the list got since; they come last. @return how many.
    int takeNewRows();
    /// @return false if cancelled: the view is as before.
    bool setFilter(const ChangeFilter& filter, const ViewProgress& progress = {});
    bool sort(ChangeColumn column, Qt::SortOrder order, const ViewProgress& progress = {});
    /// Back to the order of the run.
    void unsort();
    const ChangeFilter& filter() const { return m_filter; }

  private:
    const ChangeList& m_list;
    ChangeFilter m_filter;
    std::vector<quint32> m_rows;
    int m_seen = 0;  // rows of the list that have been looked at
    bool m_sorted = false;
    ChangeColumn m_column = ChangeColumn::Product;
    Qt::SortOrder m_order = Qt::AscendingOrder;
};

}  // namespace vatchange
