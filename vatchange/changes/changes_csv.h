#pragma once

#include <QIODevice>
#include <QString>
#include <functional>

#include "data/engine/engine.h"
#include "platform/csv.h"

namespace vatchange {

/// A line of a list of changes: a changed field of a record.
struct ChangeLine {
    qint64 seq = 0;     ///< of the record's change, from 1
    QString operation;  ///< "update", "insert" or "delete"
    QString table;
    data::RecordId record = 0;  ///< not in the file
    QString key;                ///< the fields of key 0, joined by a blank
    QString field;              ///< as the catalogue writes it
    QString before;             ///< as in "zavdb export"; empty for an insert
    QString after;              ///< empty for a delete
};

/// Shows every change of a run in the order of the changes, a line for each changed field. `seq`
/// begins after `before`.
/// @return the seq of the last change; `before` if there is none.
/// @throws RunRefused if there is no such run, or a table's description has changed since;
/// data::DataError.
qint64 visitChangeLines(data::Database& database, qint64 run, qint64 before,
                        const std::function<void(const ChangeLine&)>& see);

/// Writes changes of runs as CSV: seq,operation,table,key,field,before,after. The numbers run on
/// from one run to the next.
class ChangesCsvWriter {
  public:
    /// Begins with the header.
    explicit ChangesCsvWriter(QIODevice& output);
    /// Adds every change of a run. @return the seq of its last change; that of the run before if it
    /// has none.
    /// @throws like visitChangeLines(); platform::CsvError.
    qint64 add(data::Database& database, qint64 run);
    /// Writes the rest. @throws platform::CsvError.
    void flush() { m_writer.flush(); }

  private:
    platform::CsvWriter m_writer;
    qint64 m_last = 0;
};

/// Reads such a list line by line.
class ChangesCsvReader {
  public:
    /// @throws platform::CsvError if it does not begin with the header.
    explicit ChangesCsvReader(QIODevice& input);
    /// @return false at the end. @throws platform::CsvError.
    bool next(ChangeLine& line);

  private:
    platform::CsvReader m_reader;
};

}  // namespace vatchange
