#include "data/dictionary/tbl_res_reader.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QtEndian>
#include <algorithm>

#include "data/dictionary/block_format.h"
#include "data/dictionary/resources.h"
#include "data/error.h"
#include "data/windows1252.h"

namespace data {

namespace {

const QString kRemedy =
    QStringLiteral("Tee sanakirja uudelleen komennolla \"zavdb dictionary\" tai poista tiedosto.");

const QString kProgramFolder = QStringLiteral(":/program/dictionary");
const QString kDataFolder = QStringLiteral(":/data/dictionary");

// Reads a block; reading past its end throws an error that names the table.
class BlockCursor {
  public:
    BlockCursor(const QByteArray& block, QString tableName, qsizetype at = 0)
        : m_block(block), m_tableName(std::move(tableName)), m_at(at) {}

    qsizetype position() const { return m_at; }

    template <typename T>
    T number() {
        return qFromLittleEndian<T>(take(sizeof(T)));
    }

    QString name() {
        const int length = number<quint8>();
        return fromWindows1252(take(length), length);
    }

    void skipName() { take(number<quint8>()); }

    // The version number; -1 if the text is not a number.
    int version() {
        const QByteArray text =
            QByteArray(take(kVersionSignature.size()), kVersionSignature.size());
        const auto end = text.indexOf('\0');
        if (end < 0)
            return -1;
        bool ok = false;
        const int value = text.left(end).toInt(&ok);
        return ok ? value : -1;
    }

    bool atEndSignature() const {
        return QByteArrayView(m_block).sliced(m_at).startsWith(kEndSignature);
    }

    TFieldCacheItem field() {
        TFieldCacheItem item;
        item.number = number<quint16>();
        item.name = name().left(TFieldCacheItem::kMaxNameLength);
        item.kindWord = number<quint32>();
        item.size = number<quint16>();
        item.mask = number<quint16>();
        item.offset = number<quint16>();
        item.storedLength = number<quint16>();
        item.storage = static_cast<Storage>(number<quint16>());
        item.declaredLength = number<quint16>();
        return item;
    }

  private:
    const char* take(qsizetype count) {
        if (count > m_block.size() - m_at)
            throw DataError(ErrorKind::Damaged, m_tableName,
                            QStringLiteral("the compiled dictionary breaks off at byte %1 of %2")
                                .arg(m_at)
                                .arg(m_block.size()))
                .inFinnish(QStringLiteral("sanakirja katkeaa tavuun %1, pituus %2")
                               .arg(m_at)
                               .arg(m_block.size()),
                           kRemedy);
        const char* bytes = m_block.constData() + m_at;
        m_at += count;
        return bytes;
    }

    const QByteArray& m_block;
    QString m_tableName;
    qsizetype m_at;
};

// Reads the entries up to the end signature.
std::vector<TFieldCacheItem> readEntries(BlockCursor& cursor) {
    std::vector<TFieldCacheItem> fields;
    while (!cursor.atEndSignature())
        fields.push_back(cursor.field());
    return fields;
}

using Module = QMap<QString, QByteArray>;  // block by upper-case table name

Module& module() {
    static Module blocks;
    return blocks;
}

// Splits a file of consecutive blocks. A block of an unknown version is kept up to its end
// signature, so that reading its table reports the version.
Module splitModule(const QByteArray& bytes, const QString& fileName) {
    Module blocks;
    qsizetype start = 0;
    while (start < bytes.size()) {
        BlockCursor cursor(bytes, fileName, start);
        const QString name = cursor.name();
        qsizetype end = 0;
        if (cursor.version() == kVersion) {
            readEntries(cursor);
            end = cursor.position() + kEndSignature.size();
        } else {
            const auto signature = bytes.indexOf(kEndSignature, cursor.position());
            if (signature < 0)
                throw DataError(ErrorKind::Damaged, fileName,
                                QStringLiteral("the dictionary of %1 has no end").arg(name))
                    .inFinnish(QStringLiteral("taulun %1 sanakirja on kesken").arg(name), kRemedy);
            end = signature + kEndSignature.size();
        }
        blocks.insert(name.toUpper(), bytes.mid(start, end - start));
        start = end;
    }
    return blocks;
}

QByteArray readResource(const QString& folder, const QString& name) {
    QFile file(folder + QLatin1Char('/') + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

bool TTblResReader::ReadResource(const QString& tableName, TTblResBase& table) {
    table.FFields.clear();
    table.FFieldsResFlag = false;
    table.FFieldsResName.clear();
    const QByteArray block = findBlock(tableName);
    if (block.isEmpty() || !readBlock(block, tableName, table.FFields))
        return false;
    table.FFieldsResFlag = true;
    table.FFieldsResName = tableName.toUpper();
    return true;
}

bool TTblResReader::readBlock(const QByteArray& block, const QString& tableName,
                              std::vector<TFieldCacheItem>& fields) {
    fields.clear();
    BlockCursor cursor(block, tableName);
    cursor.skipName();
    const int version = cursor.version();
    if (version == kOldVersion)
        throw DataError::verbatim(
            ErrorKind::Damaged, QStringLiteral("Error - Resource [") + tableName +
                                    QStringLiteral("] ") +
                                    QStringLiteral(" in old format. Re-compile with RESMAIN.EXE"));
    if (version != kVersion)
        return false;
    fields = readEntries(cursor);
    return true;
}

QByteArray TTblResReader::findBlock(const QString& tableName) {
    initDictionaryResources();
    const QString name = tableName.toUpper();
    if (const auto at = module().constFind(name); at != module().constEnd())
        return *at;
    if (name.isEmpty() || name.contains(QLatin1Char('/')))
        return QByteArray();
    QByteArray block = readResource(kProgramFolder, name);
    return block.isEmpty() ? readResource(kDataFolder, name) : block;
}

void TTblResReader::setModuleFile(const QString& fileName) {
    if (fileName.isEmpty()) {
        module().clear();
        return;
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw DataError(ErrorKind::Io, fileName, file.errorString());
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw DataError(ErrorKind::Io, fileName, file.errorString());
    module() = splitModule(bytes, fileName);
}

QStringList TTblResReader::tableNames() {
    initDictionaryResources();
    QStringList names = module().keys();
    names += QDir(kProgramFolder).entryList(QDir::Files);
    names += QDir(kDataFolder).entryList(QDir::Files);
    names.removeDuplicates();
    names.sort();
    return names;
}

}  // namespace data
