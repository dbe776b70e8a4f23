// The shops' engine's call interface over embedded companies, for tests; loaded in place of the
// engine's client library. The environment variable FAKE_CLIENT_DATABASES names a file that lists
// the databases, one a line: NAME, a tab, the folder of the embedded company; optional columns:
// "owner=NAME" (required owner name), "silent" (no answer for kSilentDelay), and the Quirks
// "short", "key", "linked", "plain", "stuck", "cut", "taker". A database whose name is a folder
// serves that folder's files: each table under its location in the catalogue.

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QUrl>
#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>
#include <mutex>
#include <thread>

#include "data/dictionary/resources.h"
#include "engines/embedded/company_file.h"
#include "engines/embedded/connection.h"
#include "tests/support/fake_client/fake_cursor.h"

#ifdef Q_OS_WIN
#define FAKE_CALL __stdcall
#else
#define FAKE_CALL
#endif

namespace fake {

namespace {

using namespace data;

constexpr int kOk = 0;
constexpr int kInvalidOperation = 1;
constexpr int kFileNotOpen = 3;
constexpr int kSessionLost = 95;
constexpr int kFileNotFound = 12;
constexpr int kWrongOwner = 51;
constexpr int kDatabaseNameNotFound = 172;
constexpr std::chrono::seconds kSilentDelay{4};
constexpr quint32 kMagic = 0x52454550;
constexpr size_t kClientIdSize = 16;

struct FakeDatabase {
    QString folder;
    QString owner;
    Quirks quirks;
    bool silent = false;
};

std::optional<FakeDatabase> findDatabase(const QString& name) {
    QFile file(qEnvironmentVariable("FAKE_CLIENT_DATABASES"));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        const QStringList columns = line.split(u'\t');
        if (columns.size() < 2 || columns[0].compare(name, Qt::CaseInsensitive) != 0)
            continue;
        FakeDatabase found{columns[1], {}, {}, columns.contains(QStringLiteral("silent"))};
        for (const QString& column : columns)
            if (column.startsWith(QStringLiteral("owner=")))
                found.owner = column.mid(6);
        found.quirks = {
            columns.contains(QStringLiteral("short")),  columns.contains(QStringLiteral("key")),
            columns.contains(QStringLiteral("linked")), columns.contains(QStringLiteral("plain")),
            columns.contains(QStringLiteral("stuck")),  columns.contains(QStringLiteral("cut"))};
        if (columns.contains(QStringLiteral("taker")))
            found.quirks.taker = std::make_shared<engines::embedded::Connection>(
                engines::embedded::companyFile(found.folder));
        return found;
    }
    return std::nullopt;
}

struct Client {
    std::map<QString, std::shared_ptr<engines::embedded::Connection>> connections;
    std::map<quint32, std::unique_ptr<FakeCursor>> cursors;
};

std::mutex g_mutex;
std::map<QByteArray, Client> g_clients;
quint32 g_lastHandle = 0;

int statusOf(const DataError& error) {
    static const std::map<ErrorKind, int> kStatuses{
        {ErrorKind::DuplicateKey, 5}, {ErrorKind::NoSuchTable, kFileNotFound},
        {ErrorKind::NoSuchField, 6},  {ErrorKind::NoConnection, kFileNotFound},
        {ErrorKind::Gone, 43},        {ErrorKind::Locked, 84},
        {ErrorKind::ReadOnly, 94},    {ErrorKind::DiskFull, 18}};
    const auto found = kStatuses.find(error.kind());
    return found == kStatuses.end() ? 2 : found->second;
}

struct OpenRequest {
    QString database;
    QString table;  // or empty: by `file`
    QString file;
};

// "btrv://user@host/database?table=name&..." or the path of a file.
OpenRequest parseName(const QByteArray& name) {
    if (!name.startsWith("btrv://")) {
        const QFileInfo file(QDir::fromNativeSeparators(QString::fromLocal8Bit(name)));
        return {file.path(), QString(), file.fileName()};
    }
    const QByteArray rest = name.mid(name.indexOf('/', 7) + 1);
    const qsizetype question = rest.indexOf('?');
    const auto decoded = [](const QByteArray& part) {
        return QString::fromLocal8Bit(QByteArray::fromPercentEncoding(part));
    };
    OpenRequest request{decoded(rest.left(question)), {}, {}};
    for (const QByteArray& parameter : rest.mid(question + 1).split('&'))
        if (parameter.startsWith("table="))
            request.table = decoded(parameter.mid(6));
    return request;
}

QString tableOfFile(const Catalogue& catalogue, const QString& file) {
    static const std::map<QString, QString> kOwn{{QStringLiteral("FILE.DDF"), kFileTable},
                                                 {QStringLiteral("FIELD.DDF"), kFieldTable},
                                                 {QStringLiteral("INDEX.DDF"), kIndexTable}};
    if (const auto own = kOwn.find(file.toUpper()); own != kOwn.end())
        return own->second;
    for (const QString& table : catalogue.tableNames())
        if (catalogue.location(table).compare(file, Qt::CaseInsensitive) == 0)
            return table;
    return file;
}

int open(Client& client, char* block, const CallBuffers& buffers) {
    const OpenRequest request = parseName(
        QByteArray(buffers.key, qstrnlen(buffers.key, static_cast<size_t>(buffers.keyLength))));
    const std::optional<FakeDatabase> database = findDatabase(request.database);
    if (!database)
        return request.table.isEmpty() ? kFileNotFound : kDatabaseNameNotFound;
    const QString owner =
        QString::fromLatin1(buffers.data, *buffers.dataLength).section(u'\0', 0, 0);
    if (!database->owner.isEmpty() && owner != database->owner)
        return kWrongOwner;
    std::shared_ptr<engines::embedded::Connection>& connection =
        client.connections[database->folder];
    if (!connection) {
        connection = std::make_shared<engines::embedded::Connection>(
            engines::embedded::companyFile(database->folder));
        connection->lockWait = std::chrono::milliseconds(0);
    }
    const QString name = request.table.isEmpty()
                             ? tableOfFile(connection->catalogue(), request.file)
                             : request.table;
    const bool ofCatalogue = name.startsWith(QStringLiteral("X$"), Qt::CaseInsensitive);
    client.cursors[++g_lastHandle] = std::make_unique<FakeCursor>(
        connection, connection->table(name), ofCatalogue ? Quirks() : database->quirks);
    std::memcpy(block, &kMagic, sizeof kMagic);
    std::memcpy(block + sizeof kMagic, &g_lastHandle, sizeof g_lastHandle);
    return kOk;
}

int version(CallBuffers& buffers) {
    constexpr char kVersion[] = {15, 0, 10, 0, 'N'};
    if (*buffers.dataLength < sizeof kVersion)
        return 22;
    std::memcpy(buffers.data, kVersion, sizeof kVersion);
    *buffers.dataLength = sizeof kVersion;
    return kOk;
}

bool isSilent(int operation, const CallBuffers& buffers) {
    if (operation != 0)
        return false;
    const std::optional<FakeDatabase> database = findDatabase(
        parseName(
            QByteArray(buffers.key, qstrnlen(buffers.key, static_cast<size_t>(buffers.keyLength))))
            .database);
    return database && database->silent;
}

int run(int operation, char* block, CallBuffers& buffers, int key, const QByteArray& clientId) {
    if (isSilent(operation, buffers)) {
        std::this_thread::sleep_for(kSilentDelay);
        return kSessionLost;
    }
    const std::lock_guard guard(g_mutex);
    switch (operation) {
        case 0:
            return open(g_clients[clientId], block, buffers);
        case 25:
        case 28:
            g_clients.erase(clientId);
            return kOk;
        case 26:
            return version(buffers);
        default:
            break;
    }
    quint32 magic = 0;
    quint32 handle = 0;
    std::memcpy(&magic, block, sizeof magic);
    std::memcpy(&handle, block + sizeof magic, sizeof handle);
    const auto client = g_clients.find(clientId);
    if (operation >= 1000 || operation == 19 || operation == 20 || operation == 21)
        return kInvalidOperation;
    if (magic != kMagic || client == g_clients.end())
        return kFileNotOpen;
    const auto cursor = client->second.cursors.find(handle);
    if (cursor == client->second.cursors.end())
        return kFileNotOpen;
    if (operation == 1) {
        client->second.cursors.erase(cursor);
        std::memset(block, 0, sizeof magic);
        return kOk;
    }
    return cursor->second->run(operation, buffers, key);
}

}  // namespace

}  // namespace fake

extern "C" Q_DECL_EXPORT qint16 FAKE_CALL BTRCALLID(quint16 operation, void* positionBlock,
                                                    void* data, quint32* dataLength, void* key,
                                                    quint8 keyLength, qint8 keyNumber,
                                                    void* clientId) {
    try {
        data::initDictionaryResources();
        fake::CallBuffers buffers{static_cast<char*>(data), dataLength, static_cast<char*>(key),
                                  keyLength};
        return static_cast<qint16>(
            fake::run(operation, static_cast<char*>(positionBlock), buffers, keyNumber,
                      QByteArray(static_cast<const char*>(clientId), fake::kClientIdSize)));
    } catch (const data::DataError& error) {
        return static_cast<qint16>(fake::statusOf(error));
    }
}
