#pragma once

#include <memory>
#include <optional>

#include "data/engine/run_journal.h"
#include "data/journal/entry_codec.h"
#include "vatchange/journal/field_places.h"
#include "vatchange/journal/net_change.h"
#include "vatchange/journal/order_fingerprint.h"

namespace vatchange {

/// A table that a run changed, opened.
struct UndoTable {
    data::JournalTable stored;
    std::unique_ptr<data::TableFile> file;
    std::vector<FieldPlace> places;
    std::vector<int> changeDates;         ///< fields that tell when a record was changed
    bool consumed = false;                ///< labels or web shop marks
    bool settings = false;                ///< may hold the run mark
    const OrderTables* orders = nullptr;  ///< of order headers and rows

    const data::RecordLayout& layout() const { return file->layout(); }
    QString key(const QByteArray& keyBytes) const;
    /// Value of the key's field at a position.
    data::Value keyValue(const QByteArray& keyBytes, int position) const;
    data::KeyValues keyValues(const QByteArray& keyBytes) const;
    bool hasUniqueKey() const { return !file->keys().empty() && file->keys().front().unique; }
    bool isLabel() const;
    /// Printing sets fields that a run may have found empty.
    bool isPrintedLabel(const QByteArray& record) const;
    bool isRunMark(const QByteArray& keyBytes) const;
    /// The record that a change is about, also if it was stored anew since; nothing if it is gone.
    std::optional<data::StoredRecord> find(const NetChange& change) const;

  private:
    friend class UndoTables;
    std::unique_ptr<data::RecordDifference> m_difference;
    bool holds(const NetChange& change, const QByteArray& record) const;
};

/// The tables of a run by their index in its journal.
class UndoTables {
  public:
    /// `only`: the one table to open; empty: all.
    /// @throws RunRefused if a table is gone or described otherwise than when the run changed it.
    UndoTables(data::Database& database, data::RunJournal& journal, qint64 run,
               const QString& only);

    /// Nothing for a table that was not opened. @throws DataError(Damaged) for an unknown one.
    UndoTable* at(int table);

  private:
    std::vector<std::optional<UndoTable>> m_tables;
};

}  // namespace vatchange
