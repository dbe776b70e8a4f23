#pragma once

#include <QHash>
#include <QSet>
#include <memory>
#include <vector>

#include "tools/zavdb/catalogue_check.h"
#include "tools/zavdb/table_copy.h"

namespace tools {

using OpenTables = std::vector<std::unique_ptr<data::TableFile>>;

/// The tables of a copy with their numbers in the source's catalogue; selects the catalogue rows
/// that describe them.
class CopiedTables {
  public:
    explicit CopiedTables(const OpenTables& tables);

    /// All records of an ordinary table; of a catalogue table the rows that describe copied tables.
    BelongsToCopy belongs(const data::TableFile& table) const;

  private:
    QSet<QString> m_names;  // folded
    QSet<qint64> m_numbers;
};

/// Creates the empty database of a copy inside `work` with the layouts and keys of the source;
/// takeCopyTarget() moves it to its name. Its catalogue gets the source's rows if they describe the
/// copy's tables exactly. @return false if it has its own rows instead.
/// @throws data::DataError, CommandError.
bool makeCopyTarget(const OpenTables& source, const QString& work);
void takeCopyTarget(const QString& work);

}  // namespace tools
