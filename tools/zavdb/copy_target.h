#pragma once

#include <QHash>
#include <QSet>
#include <memory>
#include <vector>

#include "tools/zavdb/catalogue_check.h"
#include "tools/zavdb/table_copy.h"

namespace tools {

using OpenTables = std::vector<std::unique_ptr<data::TableFile>>;

/// The tables of a copy as their source's catalogue numbers them: tells which of the catalogue's
/// rows speak of them.
class CopiedTables {
  public:
    explicit CopiedTables(const OpenTables& tables);

    /// All records of an ordinary table; of a catalogue table the rows of the tables that are
    /// copied, their definitions and keys.
    BelongsToCopy belongs(const data::TableFile& table) const;

  private:
    QSet<QString> m_names;  // folded
    QSet<qint64> m_numbers;
};

/// Makes the empty database of a copy inside `work`, with the layouts and keys of the source's
/// tables; takeCopyTarget() gives it its name. Its catalogue gets the source's rows where they
/// describe the copy's tables exactly. @return false when the catalogue has rows of its own.
/// @throws data::DataError, CommandError.
bool makeCopyTarget(const OpenTables& source, const QString& work);
void takeCopyTarget(const QString& work);

}  // namespace tools
