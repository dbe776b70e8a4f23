#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "data/dictionary/dictionary_source.h"
#include "data/record/record_layout.h"

namespace data {

/// Layout and keys of one table.
struct TableDescription {
    QString name;      ///< spelled as in the catalogue
    int number = 0;    ///< Xf$Id
    QString location;  ///< Xf$Loc: the file that holds the records
    RecordLayout layout;
    std::vector<KeyDef> keys;
};

inline const QString kFileTable = QStringLiteral("X$File");
inline const QString kFieldTable = QStringLiteral("X$Field");
inline const QString kIndexTable = QStringLiteral("X$Index");

/// Bits of Xi$Flags.
enum IndexFlag : int {
    kDuplicates = 1,
    kModifiable = 2,
    kSegmented = 16,  ///< another segment of the same key follows
    kIgnoreCase = 32,
    kDescending = 64
};

/// Bit of Xf$Flags: the table belongs to the catalogue itself.
inline constexpr int kCatalogueFile = 16;

/// A table name folded for case-insensitive lookup.
QString foldedName(const QString& tableName);

/// Layout from a table's compiled dictionary. `recordLength` 0: up to the end of the last field.
/// @throws DataError(NoSuchTable) if there is no dictionary.
RecordLayout compiledLayout(const QString& tableName, int recordLength = 0);

/// The tables of a company. The catalogue is read once; a table's rows are parsed on first use.
class Catalogue {
  public:
    /// Calls `see` with every record of a catalogue table, in order of its first key. The bytes
    /// follow the table's compiled layout and are valid only during the call.
    using Rows = std::function<void(const RecordLayout& table,
                                    const std::function<void(const uchar*)>& see)>;

    Catalogue() = default;
    /// @throws DataError(Damaged) naming a table that is listed twice, for example, and whatever
    /// `rows` throws.
    explicit Catalogue(const Rows& rows);

    /// Listed tables, in order of their numbers.
    QStringList tableNames() const;
    bool lists(const QString& tableName) const;

    /// Layout and keys of a table: from its rows or, for a table that is stored but not listed,
    /// from its compiled dictionary and its source's keys. `recordLength`: the data file's; 0: up
    /// to the end of the last field.
    /// @throws DataError(NoSuchTable; Damaged if the rows contradict each other or the length).
    TableDescription describe(const QString& tableName, int recordLength = 0) const;

    /// Data file of a listed table (Xf$Loc); empty for others.
    QString location(const QString& tableName) const;

  private:
    struct FieldRow {
        int id = 0;
        int file = 0;
        QString name;
        int dataType = 0;
        int offset = 0;
        int size = 0;
        int decimals = 0;
    };
    struct IndexRow {
        int field = 0;
        int number = 0;
        int part = 0;
        int flags = 0;
    };
    struct FileEntry {
        QString name;
        int number = 0;
        QString location;
        std::vector<FieldRow> fields;
        std::vector<IndexRow> segments;
    };

    static TFieldCacheItem fieldItem(const FieldRow& row, int number, const QString& table);
    static std::vector<KeyDef> keysOf(const FileEntry& entry);

    std::vector<FileEntry> m_files;
    QHash<QString, size_t> m_byName;  // folded
};

/// Layout and keys of a table source. `number`: the table's Xf$Id.
TableDescription describeSource(const TableSource& source, int number);

}  // namespace data
