#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "vatchange/journal/row_list.h"
#include "vatchange/run/run_context.h"

namespace vatchange {

/// A column of a step's rows and the kind of value that the step takes from it.
struct RowColumn {
    enum class Kind { Text, Whole, Amount };
    QString name;
    Kind kind;
};

/// The rows of a step: those of its query in its order.
struct StepRows {
    QString table;  ///< that the step changes, in capitals
    QString query;
    std::vector<RowColumn> columns;
    /// The column with the product's number, if the rows are passed over with their product.
    std::optional<size_t> product;

    // If the rows were not listed when the run began, a resumed run finds them so: rows of
    // `laterQuery` that `laterRow` accepts, given the products that the run has converted.
    QString laterQuery;
    std::function<std::function<bool(const data::KeyValues& row)>(RunContext& run)> laterRow;
};

/// The value of a row's columns at the query's current row.
data::KeyValues rowOf(data::TUniQuery& query, const std::vector<RowColumn>& columns);
/// Opens a query that has the columns. @throws data::DataError.
void openRows(data::TUniQuery& query, const QString& text, const std::vector<RowColumn>& columns);
/// Stores the rows of an open query that `accepts` (empty: all) as the step's list.
void storeRows(RunContext& run, const StepRows& step, data::TUniQuery& query,
               const std::function<bool(const data::KeyValues& row)>& accepts);
/// The columns of a row that tell it from others, for a message.
QString rowText(const StepRows& step, const data::KeyValues& row);

/// Walks a step's rows: those of the journal's list, which it makes if there is none; without a
/// journal those of the query. A resumed run passes over the rows that have been changed.
class RowSource {
  public:
    /// @throws data::DataError.
    RowSource(RunContext& run, const StepRows& step);
    ~RowSource();
    RowSource(const RowSource&) = delete;
    RowSource& operator=(const RowSource&) = delete;

    qint64 count() const { return m_count; }
    /// Goes to the next row and names it as the origin of the changes that follow. Reports
    /// progress. Returns false at the end or if the user stops the run.
    bool next();
    /// The present row, in the order of the columns. Valid until next().
    const data::KeyValues& row() const { return *m_row; }
    qint64 position() const { return m_position; }  ///< from 1
    /// True if the row before was passed over because the run had changed it.
    bool followsChangedRow() const;
    /// Another row of the list. Valid, as the present row, until the next call.
    const data::KeyValues& rowAt(qint64 position) { return m_list->row(position); }

    /// Logs the rows that the step's query finds now and that are not on the list. To be called by
    /// a resumed run after its rows.
    void reportUnlisted();

  private:
    RunContext& m_run;
    const StepRows& m_step;
    std::optional<RowList> m_list;
    std::unique_ptr<data::TUniQuery> m_query;
    data::KeyValues m_queried;
    const data::KeyValues* m_row = nullptr;
    qint64 m_count = 0;
    qint64 m_position = 0;
    bool m_listedBefore = false;
};

}  // namespace vatchange
