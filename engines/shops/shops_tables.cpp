#include "engines/shops/shops_tables.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "engines/shops/call_status.h"
#include "engines/shops/shops_table_file.h"

namespace engines::shops {

namespace {

// The catalogue's own files, needed before it can be read.
struct CatalogueFile {
    const QString& table;
    const char* file;
};
const CatalogueFile kCatalogueFiles[] = {
    {kFileTable, "FILE.DDF"}, {kFieldTable, "FIELD.DDF"}, {kIndexTable, "INDEX.DDF"}};

QString catalogueFileOf(const QString& tableName) {
    for (const CatalogueFile& known : kCatalogueFiles)
        if (known.table.compare(tableName, Qt::CaseInsensitive) == 0)
            return QLatin1String(known.file);
    return {};
}

// The name of a file in the folder in its actual case; empty if missing.
QString fileIn(const QString& folder, const QString& name) {
    if (folder.isEmpty())
        return {};  // not the working folder
    const QStringList names = QDir(folder).entryList(QDir::Files);
    const auto found = std::find_if(names.begin(), names.end(), [&name](const QString& candidate) {
        return candidate.compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == names.end() ? QString() : QDir(folder).filePath(*found);
}

// A part of a database URI, reserved characters as %nn.
QByteArray uriPart(const QString& text) {
    QByteArray part;
    for (const char c : text.toLocal8Bit()) {
        if (QByteArrayView("%&=?#/@:+").contains(c))
            part += '%' + QByteArray(1, c).toHex().toUpper();
        else
            part += c;
    }
    return part;
}

// Statuses for an unknown database name or URI: the table may still be found by its file.
bool mayBeFoundByFile(int status) {
    return status == kDatabaseNameNotFound || status == kWrongUri || status == kInvalidFileName ||
           status == kFileNotFound;
}

[[noreturn]] void disagrees(const QString& table, const QString& detail) {
    throw DataError(ErrorKind::Damaged, table,
                    QStringLiteral("the catalogue disagrees with the file: ") + detail)
        .inFinnish(QStringLiteral("hakemisto on ristiriidassa tiedoston kanssa: ") + detail,
                   QStringLiteral("Tarkista, että hakemiston tiedostot (DDF) ovat samasta "
                                  "versiosta kuin tietokanta."));
}

// The layout of a table whose file is open.
TableDescription describeFile(const Catalogue& catalogue, const QString& tableName,
                              const FileStat& stat) {
    const bool listed = catalogue.lists(tableName);
    if (!stat.variableLength) {
        try {
            return catalogue.describe(tableName, stat.recordLength);
        } catch (const DataError& error) {
            if (error.kind() != ErrorKind::Damaged || !listed)
                throw;
            disagrees(tableName, error.detail());
        }
    }
    // A text or binary field at the end extends into the variable part.
    TableDescription table = catalogue.describe(tableName);
    for (const TFieldCacheItem& field : table.layout.fields()) {
        const bool mayContinue = field.kind() == Kind::Memo || field.kind() == Kind::VarBinary;
        const int end = field.offset + (mayContinue ? 0 : field.storedLength);
        if (end > stat.recordLength)
            disagrees(tableName, QStringLiteral("field %1 ends at byte %2 of a record of %3 bytes")
                                     .arg(field.name)
                                     .arg(end)
                                     .arg(stat.recordLength));
    }
    if (table.layout.recordLength() < stat.recordLength)
        table.layout = RecordLayout(table.name, table.layout.fields(), stat.recordLength);
    return table;
}

bool isAt(const TFieldCacheItem& field, const SegmentStat& segment) {
    return field.offset == segment.offset && field.storedLength == segment.length &&
           field.storage != Storage::Bit;
}

// The catalogue's keys must match the file's.
void checkKeys(const TableDescription& table, const FileStat& stat) {
    for (const KeyDef& key : table.keys) {
        const QString which = QStringLiteral("key %1").arg(key.number);
        if (key.number >= static_cast<int>(stat.keys.size()))
            disagrees(table.name, which + QStringLiteral(" is not in the file"));
        const std::vector<SegmentStat>& segments =
            stat.keys[static_cast<size_t>(key.number)].segments;
        if (segments.size() != key.segments.size())
            disagrees(table.name, which + QStringLiteral(" has %1 segments in the file, not %2")
                                              .arg(segments.size())
                                              .arg(key.segments.size()));
        for (size_t i = 0; i < segments.size(); ++i) {
            const TFieldCacheItem& field = table.layout.field(key.segments[i].fieldIndex);
            if (!isAt(field, segments[i]))
                disagrees(
                    table.name,
                    which + QStringLiteral(", field %1: byte %2, length %3; in the file %4 and %5")
                                .arg(field.name)
                                .arg(field.offset)
                                .arg(field.storedLength)
                                .arg(segments[i].offset)
                                .arg(segments[i].length));
        }
    }
}

// The file's keys as fields: of each the leading segments that are fields of the table.
std::vector<KeyDef> keysOf(const TableDescription& table, const FileStat& stat) {
    std::vector<KeyDef> keys;
    const std::vector<TFieldCacheItem>& fields = table.layout.fields();
    for (const KeyStat& key : stat.keys) {
        KeyDef def{key.number, !key.duplicates && !key.segments.empty(), {}};
        const bool listed = static_cast<size_t>(key.number) < table.keys.size();
        for (size_t i = 0; i < key.segments.size(); ++i) {
            const SegmentStat& segment = key.segments[i];
            int index = -1;
            if (listed && i < table.keys[static_cast<size_t>(key.number)].segments.size())
                index = table.keys[static_cast<size_t>(key.number)].segments[i].fieldIndex;
            if (index < 0 || !isAt(table.layout.field(index), segment)) {
                const auto found = std::find_if(
                    fields.begin(), fields.end(),
                    [&](const TFieldCacheItem& field) { return isAt(field, segment); });
                if (found == fields.end())
                    break;
                index = static_cast<int>(found - fields.begin());
            }
            def.segments.push_back({index, !segment.weights.isEmpty(), segment.descending});
        }
        // the omitted segments may make it unique
        def.unique = def.unique && def.segments.size() == key.segments.size();
        keys.push_back(std::move(def));
    }
    return keys;
}

}  // namespace

ShopsTables::ShopsTables(ShopsDatabaseSettings settings) : m_settings(std::move(settings)) {
    requireSession();
}

void ShopsTables::requireSession() {
    if (m_session && !m_session->isLost())
        return;
    m_session = std::make_shared<CallSession>(m_settings.name, m_settings.clientLibrary,
                                              m_settings.connectLimit, m_settings.statementLimit);
    m_session->lockWait = m_lockWait;
}

void ShopsTables::setLockWait(std::chrono::milliseconds wait) {
    m_lockWait = wait;
    m_session->lockWait = wait;
}

QByteArray ShopsTables::uriOf(const QString& tableName) const {
    QString server = m_settings.server;
#ifndef Q_OS_WIN
    if (server.isEmpty())
        server = QStringLiteral("localhost");  // this engine needs a host name
#endif
    QByteArray uri = "btrv://";
    if (!m_settings.userName.isEmpty())
        uri += uriPart(m_settings.userName) + '@';
    uri += server.toLocal8Bit() + '/' + uriPart(m_settings.name) + "?table=" + uriPart(tableName);
    if (!m_settings.password.isEmpty())
        uri += "&pwd=" + uriPart(m_settings.password);
    return uri;
}

QByteArray ShopsTables::pathOf(const QString& tableName, const QString& location) const {
    QString name = location.isEmpty() ? catalogueFileOf(tableName) : location;
#ifndef Q_OS_WIN
    name.replace(QLatin1Char('\\'), QLatin1Char('/'));
#endif
    if (name.isEmpty())
        throw DataError(ErrorKind::NoSuchTable, tableName,
                        QStringLiteral("the catalogue does not tell its file"));
    const QString written = fileIn(m_settings.folder, name);
    const QString path = written.isEmpty() ? QDir(m_settings.folder).filePath(name) : written;
    return QDir::toNativeSeparators(path).toLocal8Bit();
}

std::unique_ptr<FileCursor> ShopsTables::openCursor(const QString& tableName,
                                                    const QString& location) {
    const auto open = [&](const QByteArray& name) {
        return std::make_unique<FileCursor>(m_session, name, m_settings.ownerName, tableName);
    };
    if (!m_byFile) {
        try {
            return open(uriOf(tableName));
        } catch (const DataError& error) {
            if (!mayBeFoundByFile(error.nativeCode()) || m_catalogue ||
                fileIn(m_settings.folder, catalogueFileOf(kFileTable)).isEmpty())
                throw;
        }
        m_byFile = true;
    }
    return open(pathOf(tableName, location));
}

Catalogue ShopsTables::readCatalogue() {
    return Catalogue([this](const RecordLayout& table, const auto& see) {
        const std::unique_ptr<FileCursor> cursor = openCursor(table.tableName(), QString());
        const int length = cursor->stat().recordLength;
        if (length < table.recordLength())
            throw DataError(ErrorKind::Damaged, table.tableName(),
                            QStringLiteral("a record has %1 bytes instead of %2")
                                .arg(length)
                                .arg(table.recordLength()));
        cursor->setRecordCapacity(length);
        QByteArray record;
        int status = cursor->read(kStepFirst, {}, 0, record);
        for (; status == kOk; status = cursor->read(kStepNext, {}, 0, record)) {
            if (record.size() < table.recordLength())
                throw DataError(ErrorKind::Damaged, table.tableName(),
                                QStringLiteral("a record of %1 bytes").arg(record.size()));
            see(reinterpret_cast<const uchar*>(record.constData()));
        }
        if (status != kEndOfFile)
            throw statusError(status, table.tableName());
    });
}

const Catalogue& ShopsTables::catalogue() {
    if (!m_catalogue)
        m_catalogue = readCatalogue();
    return *m_catalogue;
}

QStringList ShopsTables::tableNames() {
    requireSession();
    m_catalogue = readCatalogue();
    QStringList names = m_catalogue->tableNames();
    names.sort(Qt::CaseInsensitive);
    return names;
}

std::unique_ptr<TableFile> ShopsTables::openTable(const QString& tableName) {
    requireSession();
    const bool listed = catalogue().lists(tableName);
    if (!listed)
        compiledLayout(tableName);  // throws if the table is in neither
    const QString location = catalogue().location(tableName);
    const auto open = [this, tableName, location] { return openCursor(tableName, location); };
    std::unique_ptr<FileCursor> cursor = open();
    const FileStat stat = cursor->stat();
    TableDescription table = describeFile(catalogue(), tableName, stat);
    if (listed)
        checkKeys(table, stat);
    std::vector<KeyDef> keys = keysOf(table, stat);
    return std::make_unique<ShopsTableFile>(std::move(cursor), open, stat, std::move(table.layout),
                                            std::move(keys));
}

void ShopsTables::inTransaction(const std::function<void()>& body) {
    requireSession();
    const auto send = [this](quint16 operation) {
        QByteArray none;
        QByteArray key;
        const int status = m_session->call(operation, nullptr, none, key, 0, QString());
        if (status != kOk)
            throw statusError(status, QString());
    };
    send(kBeginConcurrentTransaction);
    try {
        body();
    } catch (...) {
        if (!m_session->isLost())
            send(kAbortTransaction);
        throw;
    }
    send(kEndTransaction);
}

}  // namespace engines::shops
