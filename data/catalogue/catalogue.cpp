#include "data/catalogue/catalogue.h"

#include <algorithm>
#include <map>

#include "data/dictionary/tbl_res_reader.h"
#include "data/error.h"
#include "data/record/record_codec.h"

namespace data {

namespace {

constexpr quint32 kMemoKindWord = 22 << 16 | static_cast<quint32>(Kind::Memo);
constexpr quint32 kAutoIncrementKindWord = 29 << 16 | static_cast<quint32>(Kind::Integer);

// Types of X$Field rows that name a key or hold a column's constraints; other programs write them.
constexpr int kConstraintRow = 227;
constexpr int kKeyNameRow = 255;

[[noreturn]] void damaged(const QString& table, const QString& detail, const QString& finnish) {
    throw DataError(ErrorKind::Damaged, table, QStringLiteral("catalogue: ") + detail)
        .inFinnish(QStringLiteral("tietokannan hakemisto kuvaa taulun väärin (%1)").arg(finnish));
}

// The fields of one catalogue table by name.
class RowFields {
  public:
    explicit RowFields(const QString& tableName) : m_layout(compiledLayout(tableName)) {}

    const RecordLayout& layout() const { return m_layout; }
    int column(const char* name) const {
        const int index = m_layout.indexOf(QLatin1String(name));
        if (index < 0)
            throw DataError(ErrorKind::Damaged, m_layout.tableName(),
                            QStringLiteral("no field %1").arg(QLatin1String(name)));
        return index;
    }
    int number(int column, const uchar* record) const {
        return static_cast<int>(readInteger(m_layout.field(column), record));
    }
    QString text(int column, const uchar* record) const {
        return readText(m_layout.field(column), record);
    }

  private:
    RecordLayout m_layout;
};

}  // namespace

QString foldedName(const QString& tableName) {
    return tableName.toCaseFolded();
}

RecordLayout compiledLayout(const QString& tableName, int recordLength) {
    TTblResBase table;
    if (!TTblResReader::ReadResource(tableName, table))
        throw DataError(ErrorKind::NoSuchTable, tableName,
                        QStringLiteral("neither the catalogue nor a dictionary describes it"))
            .inFinnish(QStringLiteral("sitä ei ole tietokannan hakemistossa eikä sanakirjassa"));
    return RecordLayout(tableName, table.FFields, recordLength);
}

Catalogue::Catalogue(const Rows& rows) {
    std::map<int, size_t> byNumber;
    {
        const RowFields row(kFileTable);
        const int id = row.column("Xf$Id");
        const int name = row.column("Xf$Name");
        const int location = row.column("Xf$Loc");
        rows(row.layout(), [&](const uchar* record) {
            FileEntry entry;
            entry.number = row.number(id, record);
            entry.name = row.text(name, record);
            entry.location = row.text(location, record);
            if (!byNumber.emplace(entry.number, m_files.size()).second)
                damaged(entry.name,
                        QStringLiteral("two tables have the number %1").arg(entry.number),
                        QStringLiteral("numero %1 on kahdella taululla").arg(entry.number));
            if (m_byName.contains(foldedName(entry.name)))
                damaged(entry.name, QStringLiteral("the table is listed twice"),
                        QStringLiteral("taulu on kahdesti"));
            m_byName.insert(foldedName(entry.name), m_files.size());
            m_files.push_back(std::move(entry));
        });
    }
    {
        const RowFields row(kFieldTable);
        const int id = row.column("Xe$Id");
        const int file = row.column("Xe$File");
        const int name = row.column("Xe$Name");
        const int type = row.column("Xe$DataType");
        const int offset = row.column("Xe$Offset");
        const int size = row.column("Xe$Size");
        const int decimals = row.column("Xe$Dec");
        rows(row.layout(), [&](const uchar* record) {
            const auto entry = byNumber.find(row.number(file, record));
            const int dataType = row.number(type, record);
            if (entry == byNumber.end() || dataType == kConstraintRow || dataType == kKeyNameRow)
                return;
            m_files[entry->second].fields.push_back(
                {row.number(id, record), entry->first, row.text(name, record), dataType,
                 row.number(offset, record), row.number(size, record),
                 row.number(decimals, record)});
        });
    }
    {
        const RowFields row(kIndexTable);
        const int file = row.column("Xi$File");
        const int field = row.column("Xi$Field");
        const int number = row.column("Xi$Number");
        const int part = row.column("Xi$Part");
        const int flags = row.column("Xi$Flags");
        rows(row.layout(), [&](const uchar* record) {
            const auto entry = byNumber.find(row.number(file, record));
            if (entry != byNumber.end())
                m_files[entry->second].segments.push_back(
                    {row.number(field, record), row.number(number, record),
                     row.number(part, record), row.number(flags, record)});
        });
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

QString Catalogue::location(const QString& tableName) const {
    const auto found = m_byName.constFind(foldedName(tableName));
    return found == m_byName.constEnd() ? QString() : m_files[*found].location;
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
                    QStringLiteral("field %1 is bit %2 of a byte").arg(row.name).arg(row.decimals),
                    QStringLiteral("kenttä %1 on tavun bitti %2").arg(row.name).arg(row.decimals));
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
    damaged(table,
            QStringLiteral("field %1 has the unknown data type %2").arg(row.name).arg(row.dataType),
            QStringLiteral("kentän %1 tyyppi %2 on tuntematon").arg(row.name).arg(row.dataType));
}

std::vector<KeyDef> Catalogue::keysOf(const FileEntry& entry) {
    std::vector<KeyDef> keys;
    for (const IndexRow& row : entry.segments) {
        if (keys.empty() || keys.back().number != row.number) {
            if (row.number != static_cast<int>(keys.size()))
                damaged(entry.name, QStringLiteral("key %1 is missing").arg(keys.size()),
                        QStringLiteral("avain %1 puuttuu").arg(keys.size()));
            keys.push_back({row.number, (row.flags & kDuplicates) == 0, {}});
        }
        const auto field =
            std::find_if(entry.fields.begin(), entry.fields.end(),
                         [&row](const FieldRow& candidate) { return candidate.id == row.field; });
        if (field == entry.fields.end())
            damaged(entry.name,
                    QStringLiteral("key %1 has a segment of the unknown field %2")
                        .arg(row.number)
                        .arg(row.field),
                    QStringLiteral("avaimen %1 kenttää %2 ei ole").arg(row.number).arg(row.field));
        keys.back().segments.push_back({static_cast<int>(field - entry.fields.begin()),
                                        (row.flags & kIgnoreCase) != 0,
                                        (row.flags & kDescending) != 0});
    }
    return keys;
}

TableDescription Catalogue::describe(const QString& tableName, int recordLength) const {
    const auto found = m_byName.constFind(foldedName(tableName));
    if (found != m_byName.constEnd()) {
        const FileEntry& entry = m_files[*found];
        if (entry.fields.empty())
            damaged(entry.name, QStringLiteral("the table has no fields"),
                    QStringLiteral("taululla ei ole kenttiä"));
        std::vector<TFieldCacheItem> items;
        for (const FieldRow& row : entry.fields)
            items.push_back(fieldItem(row, static_cast<int>(items.size()) + 1, entry.name));
        return {entry.name, entry.number, entry.location,
                RecordLayout(entry.name, std::move(items), recordLength), keysOf(entry)};
    }
    RecordLayout layout = compiledLayout(tableName, recordLength);
    for (const TableSource& source : allTableSources()) {
        if (source.name.compare(tableName, Qt::CaseInsensitive) == 0) {
            TableDescription description = describeSource(source, 0);
            description.layout = RecordLayout(source.name, layout.fields(), recordLength);
            return description;
        }
    }
    return {tableName, 0, {}, std::move(layout), {}};
}

TableDescription describeSource(const TableSource& source, int number) {
    TableDescription description{
        source.name, number, {}, RecordLayout(source.name, source.fields), source.keyDefs};
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

}  // namespace data
