#include "data/dictionary/dictionary_source.h"

#include <QHash>
#include <QSet>
#include <algorithm>
#include <optional>

#include "data/dictionary/block_format.h"
#include "data/error.h"
#include "data/windows1252.h"

namespace data {

namespace {

// Words of the source format by value; the first spelling of a value is the documented one.
template <typename T>
std::optional<T> lookUp(const QHash<QString, T>& words, const QString& word) {
    const auto at = words.constFind(word);
    return at == words.constEnd() ? std::nullopt : std::optional<T>(*at);
}

const QHash<QString, Kind>& kindWords() {
    static const QHash<QString, Kind> words{
        {QStringLiteral("raw"), Kind::RawBytes},
        {QStringLiteral("string"), Kind::String},
        {QStringLiteral("date"), Kind::Date},
        {QStringLiteral("memo"), Kind::Memo},
        {QStringLiteral("boolean"), Kind::Boolean},
        {QStringLiteral("smallint"), Kind::SmallInt},
        {QStringLiteral("integer"), Kind::Integer},
        {QStringLiteral("float"), Kind::Float},
        {QStringLiteral("varbinary"), Kind::VarBinary},
        {QStringLiteral("time"), Kind::Time},
        {QStringLiteral("timestamp"), Kind::Timestamp},
        {QStringLiteral("unsigned"), Kind::Unsigned},
        {QStringLiteral("largeint"), Kind::LargeInt},
    };
    return words;
}

const QHash<QString, Storage>& storageWords() {
    static const QHash<QString, Storage> words{
        {QStringLiteral("STRING"), Storage::String},
        {QStringLiteral("INTEGER"), Storage::Integer},
        {QStringLiteral("FLOAT"), Storage::Float},
        {QStringLiteral("DATE"), Storage::Date},
        {QStringLiteral("TIME"), Storage::Time},
        {QStringLiteral("LOGICAL"), Storage::Logical},
        {QStringLiteral("LSTRING"), Storage::LString},
        {QStringLiteral("ZSTRING"), Storage::ZString},
        {QStringLiteral("NOTE"), Storage::Note},
        {QStringLiteral("LVAR"), Storage::LVar},
        {QStringLiteral("UNSIGNED"), Storage::UnsignedBinary},
        {QStringLiteral("AUTOINCREMENT"), Storage::AutoIncrement},
        {QStringLiteral("BIT"), Storage::Bit},
        {QStringLiteral("TIMESTAMP"), Storage::Timestamp},
        {QStringLiteral("BLOB"), Storage::Blob},
        {QStringLiteral("GUID"), Storage::Guid},
        {QStringLiteral("DATEDOUBLE"), Storage::DateDouble},
        {QStringLiteral("REAL48"), Storage::Real48},
    };
    return words;
}

class SourceParser {
  public:
    SourceParser(const QByteArray& text, const QString& fileName)
        : m_lines(QString::fromUtf8(text).split(QLatin1Char('\n'))), m_fileName(fileName) {}

    TableSource parse() {
        for (m_line = 1; m_line <= m_lines.size(); ++m_line) {
            const QString line = m_lines.at(m_line - 1).simplified();
            if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
                continue;
            const QStringList words = line.split(QLatin1Char(' '));
            const QString& statement = words.first();
            if (statement == QLatin1String("table"))
                parseTable(words);
            else if (statement == QLatin1String("field"))
                parseField(words);
            else if (statement == QLatin1String("key"))
                parseKey(words);
            else
                fail(statement, QStringLiteral("expected table, field or key"));
        }
        if (m_table.name.isEmpty())
            throw DataError(ErrorKind::Syntax, m_fileName, QStringLiteral("no table statement"));
        return m_table;
    }

  private:
    [[noreturn]] void fail(const QString& word, const QString& why) const {
        throw DataError(
            ErrorKind::Syntax, m_fileName,
            QStringLiteral("line %1, \"%2\": %3").arg(QString::number(m_line), word, why));
    }

    quint16 number(const QString& word) const {
        bool ok = false;
        const quint16 value = word.toUShort(&ok);
        if (!ok)
            fail(word, QStringLiteral("expected a number from 0 to 65535"));
        return value;
    }

    void parseTable(const QStringList& words) {
        if (words.size() != 2)
            fail(words.join(QLatin1Char(' ')), QStringLiteral("expected: table NAME"));
        if (!m_table.name.isEmpty())
            fail(words[1], QStringLiteral("a source describes one table"));
        m_table.name = words[1];
    }

    // field NUMBER NAME KIND[:QUALIFIER] SIZE OFFSET STOREDLENGTH STORAGE [MASK]
    void parseField(const QStringList& words) {
        if (words.size() != 8 && words.size() != 9)
            fail(words.join(QLatin1Char(' ')),
                 QStringLiteral("expected: field NUMBER NAME KIND SIZE OFFSET STOREDLENGTH STORAGE "
                                "[MASK]"));
        TFieldCacheItem field;
        field.number = number(words[1]);
        if (field.number != m_table.fields.size() + 1)
            fail(words[1],
                 QStringLiteral("expected field number %1").arg(m_table.fields.size() + 1));
        field.name = words[2];
        if (field.name.size() > TFieldCacheItem::kMaxNameLength)
            fail(words[2], QStringLiteral("a field name has at most %1 characters")
                               .arg(TFieldCacheItem::kMaxNameLength));
        if (m_fieldNames.contains(field.name.toCaseFolded()))
            fail(words[2], QStringLiteral("the table has this field already"));
        m_fieldNames.insert(field.name.toCaseFolded());

        const QStringList kindParts = words[3].split(QLatin1Char(':'));
        const auto kind = lookUp(kindWords(), kindParts.first());
        if (!kind || kindParts.size() > 2)
            fail(words[3], QStringLiteral("unknown kind"));
        field.kindWord = static_cast<quint32>(*kind);
        if (kindParts.size() == 2)
            field.kindWord |= static_cast<quint32>(number(kindParts[1])) << 16U;

        field.size = number(words[4]);
        field.offset = number(words[5]);
        field.storedLength = number(words[6]);
        field.declaredLength = field.storedLength;
        const auto storage = lookUp(storageWords(), words[7]);
        if (!storage)
            fail(words[7], QStringLiteral("unknown storage type"));
        field.storage = *storage;
        if (words.size() == 9)
            field.mask = number(words[8]);
        m_table.fields.push_back(field);
    }

    // key NUMBER unique|duplicates [ignorecase] : FIELD ...
    void parseKey(const QStringList& words) {
        const auto colon = words.indexOf(QStringLiteral(":"));
        if (colon < 3 || colon + 1 >= words.size())
            fail(words.join(QLatin1Char(' ')),
                 QStringLiteral("expected: key NUMBER unique|duplicates [ignorecase] : FIELD ..."));
        KeySource key;
        key.number = number(words[1]);
        if (key.number != static_cast<int>(m_table.keys.size()))
            fail(words[1], QStringLiteral("expected key number %1").arg(m_table.keys.size()));
        if (words[2] != QLatin1String("unique") && words[2] != QLatin1String("duplicates"))
            fail(words[2], QStringLiteral("expected unique or duplicates"));
        key.unique = words[2] == QLatin1String("unique");
        for (qsizetype i = 3; i < colon; ++i) {
            if (words[i] != QLatin1String("ignorecase"))
                fail(words[i], QStringLiteral("expected ignorecase"));
            key.ignoreCase = true;
        }
        for (qsizetype i = colon + 1; i < words.size(); ++i) {
            if (!m_fieldNames.contains(words[i].toCaseFolded()))
                fail(words[i], QStringLiteral("the table has no such field"));
            key.fields.append(words[i]);
        }
        m_table.keys.push_back(key);
    }

    QStringList m_lines;
    QString m_fileName;
    qsizetype m_line = 0;
    TableSource m_table;
    QSet<QString> m_fieldNames;  // folded
};

// Appends a length byte and the name.
void appendName(QByteArray& block, const QString& table, const QString& name, int maxLength) {
    QByteArray bytes;
    if (name.isEmpty() || name.size() > maxLength || !toWindows1252(name, bytes))
        throw DataError(ErrorKind::BadValue, table,
                        QStringLiteral("name \"%1\": expected 1 to %2 characters of Windows-1252")
                            .arg(name)
                            .arg(maxLength));
    block.append(static_cast<char>(bytes.size()));
    block.append(bytes);
}

void appendWord(QByteArray& block, quint32 value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        block.append(static_cast<char>(value >> (8 * i) & 0xFFU));
}

}  // namespace

int TableSource::span() const {
    int end = 0;
    for (const TFieldCacheItem& field : fields)
        end = std::max(end, field.offset + field.storedLength);
    return end;
}

TableSource parseTableSource(const QByteArray& text, const QString& fileName) {
    return SourceParser(text, fileName).parse();
}

QByteArray compileBlock(const QString& tableName, const std::vector<TFieldCacheItem>& fields) {
    QByteArray block;
    appendName(block, tableName, tableName, 255);
    block.append(kVersionSignature);
    for (const TFieldCacheItem& field : fields) {
        if (field.number != static_cast<size_t>(&field - fields.data()) + 1)
            throw DataError(ErrorKind::BadValue, tableName,
                            QStringLiteral("field %1: number %2 is out of sequence")
                                .arg(field.name)
                                .arg(field.number));
        appendWord(block, field.number, 2);
        appendName(block, tableName, field.name, TFieldCacheItem::kMaxNameLength);
        appendWord(block, field.kindWord, 4);
        appendWord(block, field.size, 2);
        appendWord(block, field.mask, 2);
        appendWord(block, field.offset, 2);
        appendWord(block, field.storedLength, 2);
        appendWord(block, static_cast<quint16>(field.storage), 2);
        appendWord(block, field.declaredLength, 2);
    }
    block.append(kEndSignature);
    return block;
}

}  // namespace data
