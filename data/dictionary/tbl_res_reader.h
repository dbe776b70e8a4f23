#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

#include "data/dictionary/field_cache_item.h"

namespace data {

/// What a table object keeps of its dictionary: the field collection, whether and under which name
/// it was read from a resource.
class TTblResBase {
  public:
    std::vector<TFieldCacheItem> FFields;  ///< entry order: index = field number - 1
    bool FFieldsResFlag = false;           ///< the fields came from a dictionary
    QString FFieldsResName;                ///< under this name
};

/// Reads the compiled dictionary block of a table (see docs/record-format.md for its bytes).
///
/// A block is looked up by table name, case ignored, in this order; the first hit is used:
///   1. the separately loaded dictionary file, when one is set (setModuleFile),
///   2. the program's own resources (":/program/dictionary/NAME"),
///   3. the resources of data/ itself (":/data/dictionary/NAME").
class TTblResReader {
  public:
    /// Reads the dictionary of `tableName` into `table.FFields` (cleared first).
    /// @return true when a block was found and read to its end signature; false when there is none
    ///         or its version is unknown (then no field items are created).
    /// @throws DataError(Damaged) for a version 1 block ("Error - Resource [NAME]  in old format.
    ///         Re-compile with RESMAIN.EXE") and for a block that breaks off.
    static bool ReadResource(const QString& tableName, TTblResBase& table);

    /// Decodes one block. As ReadResource, on given bytes. `tableName` stands in the error text.
    static bool readBlock(const QByteArray& block, const QString& tableName,
                          std::vector<TFieldCacheItem>& fields);

    /// The raw block of a table, empty when none is found.
    static QByteArray findBlock(const QString& tableName);

    /// Sets the separately loaded module: a file of compiled blocks, one after another. An empty
    /// name unsets it. @throws DataError(Io, Damaged) naming the file; the earlier module stays.
    static void setModuleFile(const QString& fileName);

    /// Names (upper case) of all tables that have a block in any of the three places.
    static QStringList tableNames();
};

}  // namespace data
