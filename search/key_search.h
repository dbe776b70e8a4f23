#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "data/table/tb_table.h"
#include "search/table_model.h"

namespace search {

/// What a typed text means for a key field; nothing when the field cannot hold it.
std::optional<data::Value> keyValue(const data::TFieldCacheItem& field, const QString& text);

/// The range of a key that a text asks for: values that begin with it for a text field, the value
/// itself for a date or a whole number.
struct TextRange {
    std::optional<KeyRange> range = {};
    QString message = {};  ///< why there is no range, for the user
};
TextRange textRange(const data::TFieldCacheItem& field, const QString& text);

/// The completion of a text while it is typed. A change by the completion itself or by deleting
/// does not complete again.
class Completion {
  public:
    /// @return whether the text now waits to be completed.
    bool textChanged(const QString& text);
    /// Delete or Backspace is about to change the text (`changes`), or has nothing to delete.
    void aboutToDelete(bool changes);
    /// The whole text when a found value completes what was typed: it begins with it (case ignored)
    /// and is longer. The next change of the text is then the completion's own.
    std::optional<QString> complete(const QString& typed, const QString& found);

  private:
    enum class NextChange { Typed, OwnOrDeleted };
    NextChange m_next = NextChange::Typed;
};

/// The keys of an open record table, and the search along the current one.
class KeySearch {
  public:
    /// Both must live on; the model shows the table.
    KeySearch(data::TtbTable& table, TableModel& model) : m_table(table), m_model(model) {}

    struct Order {
        int key;
        QString title;  ///< of the key's fields, by the columns' titles
    };
    std::vector<Order> orders(const std::vector<GridColumn>& columns) const;

    int key() const { return m_table.indexName().toInt(); }
    /// The first field of the current key.
    const data::TFieldCacheItem& field() const;
    /// Its value in the table's current record.
    QString currentText() const;
    /// The row nearest to a text in the current key; -1 when there is none, or when the text is no
    /// value of the key.
    int nearestRow(const QString& text);

  private:
    data::TtbTable& m_table;
    TableModel& m_model;
};

}  // namespace search
