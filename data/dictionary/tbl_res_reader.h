#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

#include "data/dictionary/field_cache_item.h"

namespace data {

/// Dictionary data of a table object: its fields and the name they were read under.
class TTblResBase {
  public:
    std::vector<TFieldCacheItem> FFields;  ///< entry order: index = field number - 1
    bool FFieldsResFlag = false;           ///< fields were read from a dictionary
    QString FFieldsResName;                ///< name they were read under
};

/// Reads the compiled dictionary block of a table (see docs/record-format.md for its bytes).
/// Blocks are looked up by table name (case-insensitive), in this order:
///   1. the loaded dictionary file, if any (setModuleFile),
///   2. the program's resources (":/program/dictionary/NAME"),
///   3. the resources of data/ (":/data/dictionary/NAME").
class TTblResReader {
  public:
    /// Reads the dictionary of `tableName` into `table.FFields` (cleared first).
    /// @return true if a block was found and read to its end signature; false if there is none or
    /// its version is unknown (no fields are created then).
    /// @throws DataError(Damaged) for a version 1 block ("Error - Resource [NAME]  in old format.
    ///         Re-compile with RESMAIN.EXE") and for a truncated block.
    static bool ReadResource(const QString& tableName, TTblResBase& table);

    /// As ReadResource, from the given bytes. `tableName` is for error messages.
    static bool readBlock(const QByteArray& block, const QString& tableName,
                          std::vector<TFieldCacheItem>& fields);

    /// The raw block of a table; empty if there is none.
    static QByteArray findBlock(const QString& tableName);

    /// Sets the loaded dictionary file: compiled blocks, one after another. An empty name unsets
    /// it. @throws DataError(Io, Damaged) naming the file; the previous file stays set.
    static void setModuleFile(const QString& fileName);

    /// Upper-case names of all tables that have a block.
    static QStringList tableNames();
};

}  // namespace data
