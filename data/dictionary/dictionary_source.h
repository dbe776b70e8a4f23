#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

#include "data/dictionary/field_cache_item.h"
#include "data/dictionary/key_def.h"

namespace data {

/// A key as a dictionary source names it.
struct KeySource {
    int number = 0;
    bool unique = false;
    bool ignoreCase = false;
    QStringList fields;
};

/// A table as its readable source (*.dict) describes it: the fields, which are compiled into the
/// binary block, and the keys, which the embedded engine gives a new company's table.
struct TableSource {
    QString name;  ///< as its author wrote it
    std::vector<TFieldCacheItem> fields;
    std::vector<KeySource> keys;
    /// The keys of a table whose open file tells them in full, instead of `keys`: segment by
    /// segment, by the fields' places in `fields`.
    std::vector<KeyDef> keyDefs = {};

    /// End of the last field: the record length of the embedded engine's table.
    int span() const;
};

/// Parses the text of a *.dict file. @throws DataError(Syntax) naming the file, line and word.
TableSource parseTableSource(const QByteArray& text, const QString& fileName);

/// Writes the compiled block of a table. @throws DataError(BadValue) when a name or number does not
/// fit the format.
QByteArray compileBlock(const QString& tableName, const std::vector<TFieldCacheItem>& fields);

/// The sources of every table of a new company (compiled ones and catalogue-only ones), carried as
/// resources ":/data/source/NAME.dict", in the order of table name.
std::vector<TableSource> allTableSources();

}  // namespace data
