#include "engines/embedded/column_codec.h"

#include <array>
#include <cstring>

#include "data/error.h"
#include "data/record/record_codec.h"
#include "data/windows1252.h"
#include "engines/embedded/catalogue.h"
#include "engines/embedded/functions.h"
#include "engines/embedded/sqlite_names.h"

namespace engines::embedded {

namespace {

bool isCatalogueName(const QString& tableName, const TFieldCacheItem& field) {
    return (tableName.compare(kFileTable, Qt::CaseInsensitive) == 0 &&
            field.name.compare(QLatin1String("Xf$Name"), Qt::CaseInsensitive) == 0) ||
           (tableName.compare(kFieldTable, Qt::CaseInsensitive) == 0 &&
            field.name.compare(QLatin1String("Xe$Name"), Qt::CaseInsensitive) == 0);
}

// UTF-8 of the upper half of Windows-1252.
struct Utf8Character {
    char bytes[3];
    unsigned char length;
};

const std::array<Utf8Character, 128>& upperHalf() {
    static const std::array<Utf8Character, 128> table = [] {
        std::array<Utf8Character, 128> made{};
        for (size_t i = 0; i < made.size(); ++i) {
            const char byte = static_cast<char>(i + 128);
            const QByteArray utf8 = fromWindows1252(&byte, 1).toUtf8();
            std::memcpy(made[i].bytes, utf8.constData(), static_cast<size_t>(utf8.size()));
            made[i].length = static_cast<unsigned char>(utf8.size());
        }
        return made;
    }();
    return table;
}

void resultText(sqlite3_context* context, QByteArrayView text) {
    constexpr qsizetype kOnStack = 256;
    char onStack[3 * kOnStack];
    QByteArray large;
    char* out = onStack;
    if (text.size() > kOnStack) {
        large.resize(3 * text.size());
        out = large.data();
    }
    const auto& upper = upperHalf();
    char* end = out;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 128) {
            *end++ = c;
            continue;
        }
        const Utf8Character& character = upper[byte - 128];
        std::memcpy(end, character.bytes, character.length);
        end += character.length;
    }
    sqlite3_result_text64(context, out, static_cast<sqlite3_uint64>(end - out), SQLITE_TRANSIENT,
                          SQLITE_UTF8);
}

template <typename... Numbers>
void resultFormatted(sqlite3_context* context, const char* format, Numbers... numbers) {
    char text[32];
    const int length = sqlite3_snprintf(sizeof text, text, format, numbers...) != nullptr
                           ? static_cast<int>(std::strlen(text))
                           : 0;
    sqlite3_result_text(context, text, length, SQLITE_TRANSIENT);
}

void resultEmptyText(sqlite3_context* context) {
    sqlite3_result_text(context, "", 0, SQLITE_STATIC);
}

// Whether SQL would read exactly this value from the field.
bool isStored(const TFieldCacheItem& field, const uchar* record, sqlite3_value* value) {
    const int type = sqlite3_value_type(value);
    switch (field.kind()) {
        case Kind::Boolean:
        case Kind::SmallInt:
        case Kind::Integer:
        case Kind::Unsigned:
        case Kind::LargeInt:
            return type == SQLITE_INTEGER &&
                   sqlite3_value_int64(value) == readInteger(field, record);
        case Kind::Float:
            return type == SQLITE_FLOAT && sqlite3_value_double(value) == readFloat(field, record);
        case Kind::Time:
            return type == SQLITE_TEXT &&
                   QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_value_text(value))) ==
                       readTime(field, record).toString(QStringLiteral("HH:mm:ss"));
        default:
            return false;
    }
}

Value valueOf(const QString& tableName, const TFieldCacheItem& field, sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
        case SQLITE_INTEGER:
            return static_cast<qint64>(sqlite3_value_int64(value));
        case SQLITE_FLOAT:
            return sqlite3_value_double(value);
        case SQLITE_TEXT:
            return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_value_text(value)),
                                     sqlite3_value_bytes(value));
        case SQLITE_BLOB:
            if (field.kind() == Kind::RawBytes || field.kind() == Kind::VarBinary)
                return QByteArray(static_cast<const char*>(sqlite3_value_blob(value)),
                                  sqlite3_value_bytes(value));
            throw DataError(
                ErrorKind::BadValue, tableName,
                QStringLiteral("field %1: binary bytes are no value of it").arg(field.name))
                .inFinnish(QStringLiteral("kenttä %1: tavujono ei ole sen arvo").arg(field.name));
        default:
            return {};
    }
}

}  // namespace

const char* columnCollation(const QString& tableName, const TFieldCacheItem& field) {
    switch (field.kind()) {
        case Kind::String:
        case Kind::Memo:
            if (field.storage == Storage::Blob)
                return "BINARY";
            return isCatalogueName(tableName, field) ? kNameCollation : kTextCollation;
        case Kind::Date:
            return kDateCollation;
        default:
            return "BINARY";
    }
}

QByteArray columnDeclaration(const QString& tableName, const TFieldCacheItem& field) {
    const QByteArray name = quotedName(field.name);
    switch (field.kind()) {
        case Kind::Boolean:
        case Kind::SmallInt:
        case Kind::Integer:
        case Kind::Unsigned:
        case Kind::LargeInt:
            return name + " INTEGER";
        case Kind::Float:
            return name + " REAL";
        case Kind::RawBytes:
        case Kind::VarBinary:
            return name + " BLOB";
        default:
            return name + " TEXT COLLATE " + columnCollation(tableName, field);
    }
}

void resultField(sqlite3_context* context, const TFieldCacheItem& field, const uchar* record) {
    switch (field.kind()) {
        case Kind::Boolean:
        case Kind::SmallInt:
        case Kind::Integer:
        case Kind::Unsigned:
        case Kind::LargeInt:
            sqlite3_result_int64(context, readInteger(field, record));
            return;
        case Kind::Float:
            sqlite3_result_double(context, readFloat(field, record));
            return;
        case Kind::String:
        case Kind::Memo:
            if (field.storage == Storage::Blob)
                break;
            resultText(context, readTextBytes(field, record));
            return;
        case Kind::Date: {
            const QDate date = readDate(field, record);
            if (!date.isValid())
                resultEmptyText(context);
            else
                resultFormatted(context, "%04d-%02d-%02d", date.year(), date.month(), date.day());
            return;
        }
        case Kind::Time: {
            const QTime time = readTime(field, record);
            if (!time.isValid())
                resultEmptyText(context);
            else
                resultFormatted(context, "%02d:%02d:%02d", time.hour(), time.minute(),
                                time.second());
            return;
        }
        case Kind::Timestamp: {
            const QDateTime at = readTimestamp(field, record);
            if (!at.isValid())
                resultEmptyText(context);
            else
                resultFormatted(context, "%04d-%02d-%02d %02d:%02d:%02d", at.date().year(),
                                at.date().month(), at.date().day(), at.time().hour(),
                                at.time().minute(), at.time().second());
            return;
        }
        case Kind::RawBytes:
        case Kind::VarBinary:
            break;
    }
    const QByteArray bytes = readValue(field, record).toByteArray();
    sqlite3_result_blob64(context, bytes.constData(), static_cast<sqlite3_uint64>(bytes.size()),
                          SQLITE_TRANSIENT);
}

void storeField(const QString& tableName, const TFieldCacheItem& field, uchar* record,
                sqlite3_value* value) {
    const int type = sqlite3_value_type(value);
    if (type == SQLITE_NULL) {
        clearField(field, record);
        return;
    }
    if (isStored(field, record, value))
        return;
    if (field.kind() == Kind::Float && (type == SQLITE_FLOAT || type == SQLITE_INTEGER))
        writeFloat(field, record, sqlite3_value_double(value), tableName);
    else
        writeValue(field, record, valueOf(tableName, field, value), tableName);
}

}  // namespace engines::embedded
