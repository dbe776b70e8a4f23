#include "engines/embedded/catalogue.h"

#include "data/error.h"
#include "data/record/record_codec.h"
#include "engines/embedded/embedded_database.h"
#include "engines/embedded/sqlite_names.h"

namespace engines::embedded {

namespace {

// Calls `see` with the records of a catalogue table in id order.
void showRows(sqlite3* db, const RecordLayout& table,
              const std::function<void(const uchar*)>& see) {
    const QString& name = table.tableName();
    try {
        Statement rows(db, "SELECT data FROM " + quotedName(storedName(name)) + " ORDER BY id",
                       name);
        while (rows.step()) {
            const QByteArrayView bytes = rows.blob(0);
            if (bytes.size() != table.recordLength())
                throw DataError(ErrorKind::Damaged, name,
                                QStringLiteral("a record has %1 bytes instead of %2")
                                    .arg(bytes.size())
                                    .arg(table.recordLength()));
            see(reinterpret_cast<const uchar*>(bytes.data()));
        }
    } catch (const DataError& error) {
        if (error.kind() != ErrorKind::NoSuchTable && error.kind() != ErrorKind::NoSuchField)
            throw;
        throw DataError(ErrorKind::Damaged, name, QStringLiteral("the catalogue table is missing"))
            .inFinnish(QStringLiteral("tietokannan hakemiston taulu puuttuu"));
    }
}

}  // namespace

QString storedName(const QString& tableName) {
    return QStringLiteral("rec_") + tableName;
}

Catalogue readCatalogue(sqlite3* db) {
    return Catalogue([db](const RecordLayout& table, const std::function<void(const uchar*)>& see) {
        showRows(db, table, see);
    });
}

namespace {

// Builds one record of a catalogue table.
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

}  // namespace engines::embedded
