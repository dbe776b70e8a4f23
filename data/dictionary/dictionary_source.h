#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

#include "data/dictionary/field_cache_item.h"
#include "data/dictionary/key_def.h"

namespace data {

/// A key in a dictionary source.
struct KeySource {
    int number = 0;
    bool unique = false;
    bool ignoreCase = false;
    QStringList fields;
};

/// A table's source file (*.dict): the fields, which are compiled into the binary block, and the
/// keys, which the embedded engine creates in a new company.
struct TableSource {
    QString name;  ///< spelled as in the source
    std::vector<TFieldCacheItem> fields;
    std::vector<KeySource> keys;
    /// Complete key definitions from an open data file, with indexes into `fields`; replace `keys`.
    std::vector<KeyDef> keyDefs = {};

    /// End of the last field: the record length in the embedded engine.
    int span() const;
};

/// Parses the text of a *.dict file. @throws DataError(Syntax) naming the file, line and word.
TableSource parseTableSource(const QByteArray& text, const QString& fileName);

/// Compiles the dictionary block of a table. @throws DataError(BadValue) if a name or number does
/// not fit the format.
QByteArray compileBlock(const QString& tableName, const std::vector<TFieldCacheItem>& fields);

/// Sources of all tables of a new company, including those without a compiled dictionary, sorted by
/// name. Resources ":/data/source/NAME.dict".
std::vector<TableSource> allTableSources();

}  // namespace data
