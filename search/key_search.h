#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "data/table/tb_table.h"
#include "search/table_model.h"

namespace search {

/// A typed text as a key field's value; nothing if the field cannot store it.
std::optional<data::Value> keyValue(const data::TFieldCacheItem& field, const QString& text);

/// The key range for a typed text: values beginning with it for a text field, the value itself for
/// a date or an integer.
struct TextRange {
    std::optional<KeyRange> range = {};
    QString message = {};  ///< reason if there is no range, for the user
};
TextRange textRange(const data::TFieldCacheItem& field, const QString& text);

/// Completes text while it is typed, but not after its own changes or deletions.
class Completion {
  public:
    /// @return whether the text is to be completed.
    bool textChanged(const QString& text);
    /// Delete or Backspace was pressed; `changes`: there is something to delete.
    void aboutToDelete(bool changes);
    /// The whole text if the found value completes the typed one: begins with it (case ignored) and
    /// is longer. The next change of the text is then the completion's own.
    std::optional<QString> complete(const QString& typed, const QString& found);

  private:
    enum class NextChange { Typed, OwnOrDeleted };
    NextChange m_next = NextChange::Typed;
};

/// The keys of an open record table, and searching in the current one.
class KeySearch {
  public:
    /// Both must outlive it; the model shows the table.
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
    /// The row nearest to a text in the current key; -1 if there is none or the text is not a value
    /// of the key.
    int nearestRow(const QString& text);

  private:
    data::TtbTable& m_table;
    TableModel& m_model;
};

}  // namespace search
