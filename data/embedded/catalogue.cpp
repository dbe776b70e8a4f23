#include "data/embedded/catalogue.h"

#include <QtEndian>
#include <algorithm>
#include <map>

#include "data/dictionary/tbl_res_reader.h"
#include "data/embedded/embedded_database.h"
#include "data/embedded/sqlite_handle.h"
#include "data/error.h"
#include "data/record/record_codec.h"

namespace data::embedded {

namespace {

constexpr quint32 kMemoKindWord = 22 << 16 | static_cast<quint32>(Kind::Memo);
constexpr quint32 kAutoIncrementKindWord = 29 << 16 | static_cast<quint32>(Kind::Integer);

// Rows of X$Field that name a key or hold a column's constraints, as other programs write them.
constexpr int kConstraintRow = 227;
constexpr int kKeyNameRow = 255;

// The catalogue tables describe themselves in the catalogue as well; to read it, their compiled
// dictionaries are needed.
RecordLayout compiledLayout(const QString& tableName) {
    TTblResBase table;
    if (!TTblResReader::ReadResource(tableName, table))
        throw DataError(ErrorKind::NoSuchTable, tableName,
                        QStringLiteral("neither the catalogue nor a dictionary describes it"));
    return RecordLayout(tableName, table.FFields);
}

// Reads the records of a catalogue table in the order of their ids.
class RowReader {
  public:
    RowReader(sqlite3* db, const QString& tableName)
        : m_layout(compiledLayout(tableName)), m_statement(open(db, tableName)) {}

    bool next() {
        if (!m_statement.step())
            return false;
        const QByteArrayView bytes = m_statement.blob(0);
        if (bytes.size() != m_layout.recordLength())
            throw DataError(ErrorKind::Damaged, m_layout.tableName(),
                            QStringLiteral("a record has %1 bytes instead of %2")
                                .arg(bytes.size())
                                .arg(m_layout.recordLength()));
        m_record = reinterpret_cast<const uchar*>(bytes.data());
        return true;
    }

    int column(const char* name) const {
        const int index = m_layout.indexOf(QLatin1String(name));
        if (index < 0)
            throw DataError(ErrorKind::Damaged, m_layout.tableName(),
                            QStringLiteral("no field %1").arg(QLatin1String(name)));
        return index;
    }
    int number(int column) const {
        return static_cast<int>(readInteger(m_layout.field(column), m_record));
    }
    QString text(int column) const { return readText(m_layout.field(column), m_record); }

  private:
    static Statement open(sqlite3* db, const QString& tableName) {
        try {
            return Statement(
                db, "SELECT data FROM " + quotedName(storedName(tableName)) + " ORDER BY id",
                tableName);
        } catch (const DataError& error) {
            if (error.kind() != ErrorKind::NoSuchTable && error.kind() != ErrorKind::NoSuchField)
                throw;
            throw DataError(ErrorKind::Damaged, tableName,
                            QStringLiteral("the catalogue table is missing"));
        }
    }

    RecordLayout m_layout;
    Statement m_statement;
    const uchar* m_record = nullptr;
};

[[noreturn]] void damaged(const QString& table, const QString& detail) {
    throw DataError(ErrorKind::Damaged, table, QStringLiteral("catalogue: ") + detail);
}

}  // namespace

QString storedName(const QString& tableName) {
    return QStringLiteral("rec_") + tableName;
}

QString foldedName(const QString& tableName) {
    return tableName.toCaseFolded();
}

Catalogue::Catalogue(sqlite3* db) {
    std::map<int, size_t> byNumber;
    {
        RowReader rows(db, kFileTable);
        const int id = rows.column("Xf$Id");
        const int name = rows.column("Xf$Name");
        while (rows.next()) {
            FileEntry entry;
            entry.number = rows.number(id);
            entry.name = rows.text(name);
            if (!byNumber.emplace(entry.number, m_files.size()).second)
                damaged(entry.name,
                        QStringLiteral("two tables have the number %1").arg(entry.number));
            if (m_byName.contains(foldedName(entry.name)))
                damaged(entry.name, QStringLiteral("the table is listed twice"));
            m_byName.insert(foldedName(entry.name), m_files.size());
            m_files.push_back(std::move(entry));
        }
    }
    {
        RowReader rows(db, kFieldTable);
        const int id = rows.column("Xe$Id");
        const int file = rows.column("Xe$File");
        const int name = rows.column("Xe$Name");
        const int type = rows.column("Xe$DataType");
        const int offset = rows.column("Xe$Offset");
        const int size = rows.column("Xe$Size");
        const int decimals = rows.column("Xe$Dec");
        while (rows.next()) {
            const auto entry = byNumber.find(rows.number(file));
            const int dataType = rows.number(type);
            if (entry == byNumber.end() || dataType == kConstraintRow || dataType == kKeyNameRow)
                continue;
            m_files[entry->second].fields.push_back({rows.number(id), entry->first, rows.text(name),
                                                     dataType, rows.number(offset),
                                                     rows.number(size), rows.number(decimals)});
        }
    }
    {
        RowReader rows(db, kIndexTable);
        const int file = rows.column("Xi$File");
        const int field = rows.column("Xi$Field");
        const int number = rows.column("Xi$Number");
        const int part = rows.column("Xi$Part");
        const int flags = rows.column("Xi$Flags");
        while (rows.next()) {
            const auto entry = byNumber.find(rows.number(file));
            if (entry != byNumber.end())
                m_files[entry->second].segments.push_back({rows.number(field), rows.number(number),
                                                           rows.number(part), rows.number(flags)});
        }
    }
    for (FileEntry& entry : m_files) {
        std::sort(entry.fields.begin(), entry.fields.end(),
                  [](const FieldRow& a, const FieldRow& b) { return a.id < b.id; });
        std::sort(entry.segments.begin(), entry.segments.end(),
                  [](const IndexRow& a, const IndexRow& b) {
                      return std::pair(a.number, a.part) < std::pair(b.number, b.part);
                  });
    }
}

QStringList Catalogue::tableNames() const {
    QStringList names;
    for (const FileEntry& entry : m_files)
        names.append(entry.name);
    return names;
}

bool Catalogue::lists(const QString& tableName) const {
    return m_byName.contains(foldedName(tableName));
}

TFieldCacheItem Catalogue::fieldItem(const FieldRow& row, int number, const QString& table) {
    TFieldCacheItem item;
    item.number = static_cast<quint16>(number);
    item.name = row.name;
    item.offset = static_cast<quint16>(row.offset);
    item.storedLength = static_cast<quint16>(row.size);
    item.declaredLength = item.storedLength;
    item.storage = static_cast<Storage>(row.dataType);
    item.size = item.storedLength;
    const auto setKind = [&item](Kind kind, int size) {
        item.kindWord = static_cast<quint32>(kind);
        item.size = static_cast<quint16>(size);
    };
    switch (item.storage) {
        case Storage::String:
            setKind(Kind::String, row.size);
            return item;
        case Storage::LString:
        case Storage::ZString:
            setKind(Kind::String, row.size - 1);
            return item;
        case Storage::Integer:
            if (row.size <= 2)
                setKind(Kind::SmallInt, 2);
            else
                setKind(row.size == 4 ? Kind::Integer : Kind::LargeInt, row.size);
            return item;
        case Storage::Float:
            setKind(Kind::Float, row.size);
            if (row.size == 6)
                item.storage = Storage::Real48;
            return item;
        case Storage::Date:
        case Storage::DateDouble:
            setKind(Kind::Date, row.size);
            return item;
        case Storage::Time:
            setKind(Kind::Time, row.size);
            return item;
        case Storage::Logical:
            setKind(Kind::Boolean, 4);
            return item;
        case Storage::Bit:
            setKind(Kind::Boolean, 4);
            if (row.decimals > 7)
                damaged(
                    table,
                    QStringLiteral("field %1 is bit %2 of a byte").arg(row.name).arg(row.decimals));
            item.mask = static_cast<quint16>(1 << row.decimals);
            return item;
        case Storage::Note:
        case Storage::Blob:
            item.kindWord = kMemoKindWord;
            item.size = static_cast<quint16>(row.size - 1);
            return item;
        case Storage::LVar:
            setKind(Kind::VarBinary, row.size);
            return item;
        case Storage::UnsignedBinary:
            setKind(Kind::Unsigned, 2);
            return item;
        case Storage::AutoIncrement:
            item.kindWord = kAutoIncrementKindWord;
            return item;
        case Storage::Timestamp:
            setKind(Kind::Timestamp, row.size);
            return item;
        case Storage::Guid:
            setKind(Kind::RawBytes, row.size);
            return item;
        case Storage::Real48:
            break;
    }
    damaged(
        table,
        QStringLiteral("field %1 has the unknown data type %2").arg(row.name).arg(row.dataType));
}

std::vector<KeyDef> Catalogue::keysOf(const FileEntry& entry) {
    std::vector<KeyDef> keys;
    for (const IndexRow& row : entry.segments) {
        if (keys.empty() || keys.back().number != row.number) {
            if (row.number != static_cast<int>(keys.size()))
                damaged(entry.name, QStringLiteral("key %1 is missing").arg(keys.size()));
            keys.push_back({row.number, (row.flags & kDuplicates) == 0, {}});
        }
        const auto field =
            std::find_if(entry.fields.begin(), entry.fields.end(),
                         [&row](const FieldRow& candidate) { return candidate.id == row.field; });
        if (field == entry.fields.end())
            damaged(entry.name, QStringLiteral("key %1 has a segment of the unknown field %2")
                                    .arg(row.number)
                                    .arg(row.field));
        keys.back().segments.push_back({static_cast<int>(field - entry.fields.begin()),
                                        (row.flags & kIgnoreCase) != 0,
                                        (row.flags & kDescending) != 0});
    }
    return keys;
}

TableDescription Catalogue::describe(const QString& tableName) const {
    const auto found = m_byName.constFind(foldedName(tableName));
    if (found != m_byName.constEnd()) {
        const FileEntry& entry = m_files[*found];
        if (entry.fields.empty())
            damaged(entry.name, QStringLiteral("the table has no fields"));
        std::vector<TFieldCacheItem> items;
        for (const FieldRow& row : entry.fields)
            items.push_back(fieldItem(row, static_cast<int>(items.size()) + 1, entry.name));
        return {entry.name, entry.number, RecordLayout(entry.name, std::move(items)),
                keysOf(entry)};
    }
    const RecordLayout layout = compiledLayout(tableName);
    for (const TableSource& source : allTableSources()) {
        if (source.name.compare(tableName, Qt::CaseInsensitive) == 0) {
            TableDescription description = describeSource(source, 0);
            description.layout = RecordLayout(source.name, layout.fields());
            return description;
        }
    }
    return {tableName, 0, layout, {}};
}

TableDescription describeSource(const TableSource& source, int number) {
    TableDescription description{source.name, number, RecordLayout(source.name, source.fields), {}};
    for (const KeySource& key : source.keys) {
        KeyDef def{key.number, key.unique, {}};
        for (const QString& field : key.fields) {
            const int index = description.layout.indexOf(field);
            if (index < 0)
                throw DataError(ErrorKind::NoSuchField, source.name,
                                QStringLiteral("key %1: no field %2").arg(key.number).arg(field));
            def.segments.push_back({index, key.ignoreCase, false});
        }
        description.keys.push_back(std::move(def));
    }
    return description;
}

namespace {

// Fills one record of a catalogue table.
class RowWriter {
  public:
    explicit RowWriter(const QString& tableName) : m_layout(compiledLayout(tableName)) {}

    void begin() {
        m_record = QByteArray(m_layout.recordLength(), '\0');
        for (const TFieldCacheItem& field : m_layout.fields())
            clearField(field, bytes());
    }
    void set(const char* name, const Value& value) {
        writeValue(m_layout.field(m_layout.indexOf(QLatin1String(name))), bytes(), value,
                   m_layout.tableName());
    }
    const QByteArray& record() const { return m_record; }

  private:
    uchar* bytes() { return reinterpret_cast<uchar*>(m_record.data()); }

    RecordLayout m_layout;
    QByteArray m_record;
};

int bitPosition(quint16 mask) {
    int position = 0;
    while (mask > 1) {
        mask = static_cast<quint16>(mask >> 1);
        ++position;
    }
    return position;
}

bool isCatalogueTable(const QString& name) {
    return name.startsWith(QLatin1String("X$"), Qt::CaseInsensitive);
}

}  // namespace

CatalogueRows catalogueRows(const std::vector<TableSource>& tables) {
    CatalogueRows rows;
    RowWriter files(kFileTable);
    RowWriter fields(kFieldTable);
    RowWriter indexes(kIndexTable);
    int nextField = 1;
    for (size_t t = 0; t < tables.size(); ++t) {
        const TableSource& table = tables[t];
        const int fileId = static_cast<int>(t) + 1;
        const int firstField = nextField;
        files.begin();
        files.set("Xf$Id", fileId);
        files.set("Xf$Name", table.name);
        files.set("Xf$Loc", kEmbeddedFileName);
        files.set("Xf$Flags", isCatalogueTable(table.name) ? kCatalogueFile : 0);
        rows.files.push_back(files.record());
        for (const TFieldCacheItem& item : table.fields) {
            const bool real48 = item.storage == Storage::Real48;
            fields.begin();
            fields.set("Xe$Id", nextField++);
            fields.set("Xe$File", fileId);
            fields.set("Xe$Name", item.name);
            fields.set("Xe$DataType", static_cast<int>(real48 ? Storage::Float : item.storage));
            fields.set("Xe$Offset", item.offset);
            fields.set("Xe$Size", item.storedLength);
            fields.set("Xe$Dec", item.storage == Storage::Bit ? bitPosition(item.mask) : 0);
            rows.fields.push_back(fields.record());
        }
        for (const KeyDef& key : describeSource(table, fileId).keys) {
            for (size_t part = 0; part < key.segments.size(); ++part) {
                const KeySegment& segment = key.segments[part];
                indexes.begin();
                indexes.set("Xi$File", fileId);
                indexes.set("Xi$Field", firstField + segment.fieldIndex);
                indexes.set("Xi$Number", key.number);
                indexes.set("Xi$Part", static_cast<int>(part));
                indexes.set("Xi$Flags", kModifiable | (key.unique ? 0 : kDuplicates) |
                                            (part + 1 < key.segments.size() ? kSegmented : 0) |
                                            (segment.ignoreCase ? kIgnoreCase : 0) |
                                            (segment.descending ? kDescending : 0));
                rows.indexes.push_back(indexes.record());
            }
        }
    }
    return rows;
}

}  // namespace data::embedded
