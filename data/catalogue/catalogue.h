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
    QString name;      ///< as the catalogue writes it
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
    kSegmented = 16,  ///< another segment of the key follows
    kIgnoreCase = 32,
    kDescending = 64
};

/// Flag of Xf$Flags: a table of the catalogue itself.
inline constexpr int kCatalogueFile = 16;

/// A name as tables are looked up by it: case ignored.
QString foldedName(const QString& tableName);

/// The layout of a table's compiled dictionary. `recordLength` 0 takes the end of the last field.
/// @throws DataError(NoSuchTable) when there is none.
RecordLayout compiledLayout(const QString& tableName, int recordLength = 0);

/// The tables of a company, read from its catalogue once: a table's rows are parsed when it is
/// first asked for.
class Catalogue {
  public:
    /// Shows every record of a catalogue table, in the order of its first key, to `see`. The bytes
    /// are those of the table's compiled layout and live during the call.
    using Rows = std::function<void(const RecordLayout& table,
                                    const std::function<void(const uchar*)>& see)>;

    Catalogue() = default;
    /// @throws DataError(Damaged) naming the table that is listed twice or the like, and what
    /// `rows` throws.
    explicit Catalogue(const Rows& rows);

    /// Tables as the catalogue lists them, in the order of their numbers.
    QStringList tableNames() const;
    bool lists(const QString& tableName) const;

    /// Layout and keys of a table: from its rows, else (a table that is stored but not listed) from
    /// its compiled dictionary and the keys of its source. `recordLength` is the data file's; 0
    /// takes the end of the last field.
    /// @throws DataError(NoSuchTable; Damaged when the rows contradict each other or the length).
    TableDescription describe(const QString& tableName, int recordLength = 0) const;

    /// Where the records of a listed table are (Xf$Loc); empty for others.
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

/// Layout and keys as a source gives them. `number` is the table's Xf$Id.
TableDescription describeSource(const TableSource& source, int number);

}  // namespace data
