#pragma once

#include <sqlite3.h>

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <vector>

#include "data/dictionary/dictionary_source.h"
#include "data/record/record_layout.h"

namespace data::embedded {

/// Layout and keys of one table.
struct TableDescription {
    QString name;    ///< as the catalogue writes it
    int number = 0;  ///< Xf$Id
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
    kSegmented = 16,  ///< another segment of the key follows
    kIgnoreCase = 32,
    kDescending = 64
};

/// Flag of Xf$Flags: a table of the catalogue itself.
inline constexpr int kCatalogueFile = 16;

/// Name of the SQLite table that holds the records of a table.
QString storedName(const QString& tableName);

/// A name as tables are looked up by it: case ignored.
QString foldedName(const QString& tableName);

/// The tables of a company, read from its catalogue once: a table's rows are parsed when it is
/// first asked for.
class Catalogue {
  public:
    /// @throws DataError(Damaged) naming the catalogue table that is missing or cannot be read.
    explicit Catalogue(sqlite3* db);

    /// Tables as the catalogue lists them, in the order of their numbers.
    QStringList tableNames() const;
    bool lists(const QString& tableName) const;

    /// Layout and keys of a table: from its rows, else (a table that is stored but not listed) from
    /// its compiled dictionary and the keys of its source.
    /// @throws DataError(NoSuchTable; Damaged when the rows contradict each other).
    TableDescription describe(const QString& tableName) const;

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
        std::vector<FieldRow> fields;
        std::vector<IndexRow> segments;
    };

    static TFieldCacheItem fieldItem(const FieldRow& row, int number, const QString& table);
    static std::vector<KeyDef> keysOf(const FileEntry& entry);

    std::vector<FileEntry> m_files;
    QHash<QString, size_t> m_byName;  // folded
};

/// Layout and keys as a source gives them. `number` is the table's Xf$Id.
TableDescription describeSource(const TableSource& source, int number);

/// The record of one row of a catalogue table, for a new company: values by field name.
struct CatalogueRows {
    std::vector<QByteArray> files;    ///< records of X$File
    std::vector<QByteArray> fields;   ///< records of X$Field
    std::vector<QByteArray> indexes;  ///< records of X$Index
};

/// The rows that describe the tables, numbered in the order given.
/// @throws DataError(BadValue) when a name or number does not fit its catalogue field.
CatalogueRows catalogueRows(const std::vector<TableSource>& tables);

}  // namespace data::embedded
