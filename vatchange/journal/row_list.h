#pragma once

#include <QString>
#include <optional>

#include "data/engine/run_journal.h"

namespace vatchange {

// The rows that a step of a run will change, as they stood before its first change: the note
// "rows/TABLE" holds their number, "rows/TABLE/0", "rows/TABLE/1" ... the rows, kRowsOfNote each.
// The first note is written last: a list without it is none.

inline constexpr int kRowsOfNote = 1000;

/// Stores a list, a note at a time. Values are numbers, texts or invalid.
class RowListWriter {
  public:
    RowListWriter(data::RunJournal& journal, qint64 run, const QString& table);

    void add(const data::KeyValues& row);
    /// Call after the last row.
    void finish();

  private:
    void store();

    data::RunJournal& m_journal;
    const qint64 m_run;
    const QString m_name;
    std::vector<data::KeyValues> m_rows;  // of the present note
    qint64 m_count = 0;
    qint64 m_notes = 0;
};

/// Reads a stored list; holds the rows of one note at a time.
class RowList {
  public:
    /// The list of a table; nothing if it was not stored to its end.
    /// @throws data::DataError(Damaged).
    static std::optional<RowList> open(data::RunJournal& journal, qint64 run, const QString& table);

    qint64 count() const { return m_count; }
    /// A row by its position, from 1. Valid until the next call.
    const data::KeyValues& row(qint64 position);

  private:
    RowList(data::RunJournal& journal, qint64 run, QString name, qint64 count)
        : m_journal(&journal), m_run(run), m_name(std::move(name)), m_count(count) {}

    data::RunJournal* m_journal;
    qint64 m_run;
    QString m_name;
    qint64 m_count;
    qint64 m_note = -1;  // that is read
    std::vector<data::KeyValues> m_rows;
};

}  // namespace vatchange
