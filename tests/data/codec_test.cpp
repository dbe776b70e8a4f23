#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "data/error.h"
#include "data/windows1252.h"
#include "tests/data/record_fields.h"

using data::Kind;
using data::Storage;
using test::bytes;
using test::field;
using test::readBack;
using test::written;

namespace {

struct Golden {
    const char* what;
    data::TFieldCacheItem field;
    data::Value value;
    const char* hex;
};

QDateTime utc(int year, int month, int day, int hour = 0, int minute = 0, int second = 0,
              int ms = 0) {
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second, ms), Qt::UTC);
}

const auto kLString = field(Kind::String, Storage::LString, 4);
const auto kZString = field(Kind::String, Storage::ZString, 4);
const auto kPadded = field(Kind::String, Storage::String, 4);
const auto kNote = field(Kind::Memo, Storage::Note, 6);
const auto kDate = field(Kind::Date, Storage::Date, 4);
const auto kDays = field(Kind::Date, Storage::DateDouble, 8);
const auto kTime = field(Kind::Time, Storage::Time, 4);
const auto kStamp = field(Kind::Timestamp, Storage::Timestamp, 8);
const auto kLogical = field(Kind::Boolean, Storage::Logical, 1);
const auto kByte = field(Kind::SmallInt, Storage::Integer, 1);
const auto kShort = field(Kind::SmallInt, Storage::Integer, 2);
const auto kLong = field(Kind::Integer, Storage::Integer, 4);
const auto kHuge = field(Kind::LargeInt, Storage::Integer, 8);
const auto kAuto = field(Kind::Integer, Storage::AutoIncrement, 4);
const auto kUnsigned1 = field(Kind::Unsigned, Storage::UnsignedBinary, 1);
const auto kUnsigned2 = field(Kind::Unsigned, Storage::UnsignedBinary, 2);
const auto kSingle = field(Kind::Float, Storage::Float, 4);
const auto kDouble = field(Kind::Float, Storage::Float, 8);
const auto kReal48 = field(Kind::Float, Storage::Real48, 6);
const auto kLVar = field(Kind::VarBinary, Storage::LVar, 6);
const auto kBlob = field(Kind::Memo, Storage::Blob, 8);
const auto kGuid = field(Kind::RawBytes, Storage::Guid, 16);

// Each value's bytes, and the value that the bytes give back.
TEST(Codec, BytesOfEveryStorageType) {
    const QString text = QStringLiteral("äB");
    const std::vector<Golden> cases{
        {"LSTRING", kLString, text, "02 e4 42 00"},
        {"LSTRING full", kLString, QStringLiteral("abc"), "03 61 62 63"},
        {"LSTRING empty", kLString, QString(), "00 00 00 00"},
        {"ZSTRING", kZString, text, "e4 42 00 00"},
        {"ZSTRING full", kZString, QStringLiteral("a b"), "61 20 62 00"},
        {"STRING", kPadded, text, "e4 42 20 20"},
        {"STRING full", kPadded, QStringLiteral("a bc"), "61 20 62 63"},
        {"STRING empty", kPadded, QString(), "20 20 20 20"},
        {"NOTE", kNote, QStringLiteral("a\r\nb€"), "61 0d 0a 62 80 00"},
        {"LVAR", kLVar, bytes("0102"), "02 00 01 02 00 00"},
        {"DATE", kDate, QDate(2024, 9, 1), "01 09 e8 07"},
        {"DATE empty", kDate, QDate(), "00 00 00 00"},
        {"DATEDOUBLE day 1", kDays, QDate(1899, 12, 31), "00 00 00 00 00 00 f0 3f"},
        {"DATEDOUBLE day 36526", kDays, QDate(2000, 1, 1), "00 00 00 00 c0 d5 e1 40"},
        {"DATEDOUBLE empty", kDays, QDate(), "00 00 00 00 00 00 00 00"},
        {"TIME", kTime, QTime(23, 59, 58, 760), "4c 3a 3b 17"},
        {"TIMESTAMP", kStamp, utc(1970, 1, 1), "00 80 b5 f7 f5 7f 9f 08"},
        {"TIMESTAMP before", kStamp, utc(1969, 12, 31, 23, 59, 59, 999), "f0 58 b5 f7 f5 7f 9f 08"},
        {"TIMESTAMP empty", kStamp, QDateTime(), "00 00 00 00 00 00 00 00"},
        {"LOGICAL", kLogical, true, "01"},
        {"INTEGER 1", kByte, -128, "80"},
        {"INTEGER 2", kShort, -2, "fe ff"},
        {"INTEGER 4", kLong, 305419896, "78 56 34 12"},
        {"INTEGER 8", kHuge, std::numeric_limits<qint64>::min(), "00 00 00 00 00 00 00 80"},
        {"AUTOINCREMENT", kAuto, 1, "01 00 00 00"},
        {"UNSIGNED 1", kUnsigned1, 255, "ff"},
        {"UNSIGNED 2", kUnsigned2, 65534, "fe ff"},
        {"FLOAT 4", kSingle, 25.5, "00 00 cc 41"},
        {"FLOAT 8", kDouble, -0.1, "9a 99 99 99 99 99 b9 bf"},
        {"REAL48 1", kReal48, 1.0, "81 00 00 00 00 00"},
        {"REAL48 -1", kReal48, -1.0, "81 00 00 00 00 80"},
        {"REAL48 10", kReal48, 10.0, "84 00 00 00 00 20"},
        {"REAL48 smallest", kReal48, std::ldexp(1.0, -128), "01 00 00 00 00 00"},
        {"REAL48 zero", kReal48, 0.0, "00 00 00 00 00 00"},
        {"BLOB", kBlob, bytes("0102030405060708"), "01 02 03 04 05 06 07 08"},
        {"GUID", kGuid, bytes("000102030405060708090a0b0c0d0e0f"),
         "00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f"},
    };
    for (const Golden& c : cases) {
        SCOPED_TRACE(c.what);
        const QByteArray expected = bytes(c.hex);
        EXPECT_EQ(written(c.field, c.value).toHex(), expected.toHex());
        const data::Value value = readBack(c.field, expected);
        if (c.field.kind() == Kind::Timestamp)
            EXPECT_EQ(value.toDateTime().toUTC(), c.value.toDateTime());
        else
            EXPECT_EQ(value, c.value) << value.toString().toStdString();
    }
}

TEST(Codec, OddBytesAreReadWithinTheirField) {
    const std::vector<Golden> cases{
        {"length byte beyond the area", kLString, QStringLiteral("abc"), "09 61 62 63"},
        {"no terminator", kZString, QStringLiteral("abc"), "61 62 63 64"},
        {"rest after the terminator", kZString, QStringLiteral("a"), "61 00 63 64"},
        {"zeroed STRING", kPadded, QString::fromLatin1(""), "00 00 00 00"},
        {"leading blanks stay", kPadded, QStringLiteral("  a"), "20 20 61 20"},
        {"note without terminator", kNote, QStringLiteral("abcde"), "61 62 63 64 65 66"},
        {"length word beyond the area", kLVar, bytes("01020304"), "ff ff 01 02 03 04"},
        {"30 February", kDate, QDate(), "1e 02 e8 07"},
        {"year 0", kDate, QDate(), "01 01 00 00"},
        {"year 10000", kDate, QDate(), "01 01 10 27"},
        {"day with a fraction", kDays, QDate(2000, 1, 1), "00 00 00 00 d8 d5 e1 40"},
        {"time of day alone", kDays, QDate(), "00 00 00 00 00 00 e0 3f"},
        {"not-a-number", kDays, QDate(), "00 00 00 00 00 00 f8 7f"},
        {"infinite day", kDays, QDate(), "00 00 00 00 00 00 f0 7f"},
        {"midnight", kTime, QTime(0, 0), "00 00 00 00"},
        {"24 o'clock", kTime, QTime(), "00 00 00 18"},
        {"100 hundredths", kTime, QTime(), "64 00 00 00"},
        {"end of time", kStamp, QDateTime(), "ff ff ff ff ff ff ff ff"},
        {"any bit is true", kLogical, true, "40"},
        {"REAL48 without exponent", kReal48, 0.0, "00 01 02 03 04 85"},
    };
    for (const Golden& c : cases) {
        SCOPED_TRACE(c.what);
        const data::Value value = readBack(c.field, bytes(c.hex));
        EXPECT_EQ(value, c.value) << value.toString().toStdString();
    }
}

TEST(Codec, BitsChangeNothingBesideThem) {
    for (int mask = 1; mask <= 128; mask *= 2) {
        const auto bit = field(Kind::Boolean, Storage::Bit, 1, mask);
        EXPECT_EQ(static_cast<uchar>(written(bit, false)[0]), 0xFF - mask);
        QByteArray record(1, '\0');
        data::writeValue(bit, reinterpret_cast<uchar*>(record.data()), 1, QString());
        EXPECT_EQ(static_cast<uchar>(record[0]), mask);
        EXPECT_TRUE(readBack(bit, record).toBool());
        data::clearField(bit, reinterpret_cast<uchar*>(record.data()));
        EXPECT_EQ(record[0], '\0');
    }
}

TEST(Codec, ValuesOfOtherTypesThatMeanTheSame) {
    const std::vector<Golden> cases{
        {"text for a number", kShort, QStringLiteral("-12"), "f4 ff"},
        {"double for a whole number", kShort, 12.0, "0c 00"},
        {"bool for a number", kShort, true, "01 00"},
        {"text for a float", kDouble, QStringLiteral("1.5"), "00 00 00 00 00 00 f8 3f"},
        {"whole number for a float", kSingle, 2, "00 00 00 40"},
        {"one for a boolean", kLogical, 1, "01"},
        {"text for a boolean", kLogical, QStringLiteral("0"), "00"},
        {"text for a date", kDate, QStringLiteral("2024-09-01"), "01 09 e8 07"},
        {"compact date", kDate, QStringLiteral("20240901"), "01 09 e8 07"},
        {"compact date as days", kDays, QStringLiteral("20000101"), "00 00 00 00 c0 d5 e1 40"},
        {"empty text for a date", kDate, QString(), "00 00 00 00"},
        {"text for a time", kTime, QStringLiteral("01:02:03"), "00 03 02 01"},
        {"number for a text", kZString, 12, "31 32 00 00"},
        {"double for a text", kZString, 0.5, "30 2e 35 00"},
        {"hexadecimal for bytes", kLVar, QStringLiteral("0aFF"), "02 00 0a ff 00 00"},
        {"empty text for bytes", kBlob, QString(), "00 00 00 00 00 00 00 00"},
        {"NULL for a number", kShort, data::Value(), "00 00"},
        {"NULL for a padded text", kPadded, data::Value(), "20 20 20 20"},
        {"one zero", kDouble, -0.0, "00 00 00 00 00 00 00 00"},
        {"single rounds to nearest", kSingle, 0.1, "cd cc cc 3d"},
    };
    for (const Golden& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(written(c.field, c.value).toHex(), bytes(c.hex).toHex());
    }
}

TEST(Codec, RefusedValuesChangeNothingAndAreNamed) {
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    struct Refused {
        data::TFieldCacheItem field;
        data::Value value;
        const char* words;
    };
    const std::vector<Refused> cases{
        {kByte, 128, "\"128\": out of range -128..127"},
        {kByte, -129, "\"-129\": out of range"},
        {kShort, 32768, "\"32768\": out of range -32768..32767"},
        {kLong, qint64{2147483648}, "out of range -2147483648..2147483647"},
        {kUnsigned1, 256, "out of range 0..255"},
        {kUnsigned2, -1, "out of range 0..65535"},
        {kHuge, QStringLiteral("9223372036854775808"), "out of range"},
        {kShort, 1.5, "\"1.5\": not a whole number"},
        {kShort, kInfinite, "not a whole number"},
        {kShort, QStringLiteral("1,5"), "\"1,5\": not a whole number"},
        {kShort, QDate(2024, 9, 1), "\"2024-09-01\": not a whole number"},
        {kLogical, 2, "\"2\": not 0 or 1"},
        {kSingle, 3.5e38, "too large for the field"},
        {kDouble, kInfinite, "not a finite number"},
        {kDouble, std::numeric_limits<double>::quiet_NaN(), "not a finite number"},
        {kReal48, std::ldexp(1.0, 127), "too large for the field"},
        {kDouble, QStringLiteral("abc"), "\"abc\": not a number"},
        {kLString, QStringLiteral("abcd"), "\"abcd\": text longer than 3 characters"},
        {kZString, QStringLiteral("abcd"), "text longer than 3 characters"},
        {kPadded, QStringLiteral("abcde"), "text longer than 4 characters"},
        {kNote, QStringLiteral("abcdef"), "text longer than 5 characters"},
        {kLString, QStringLiteral("aŁ"), "character Ł (U+0141) is not in Windows-1252"},
        {kNote, QStringLiteral("a\U0001F600"), "character \U0001F600 (U+1F600) is not"},
        {kZString, QString(1, QChar(0)), "zero character"},
        {kDate, QStringLiteral("2023-02-29"), "\"2023-02-29\": not a date"},
        {kDate, QStringLiteral("20230229"), "not a date"},
        {kDate, 45, "\"45\": not a date"},
        {kDays, QDate(1899, 12, 30), "stands for the empty date"},
        {kDate, QDate(10000, 1, 1), "year outside 1..9999"},
        {kTime, QStringLiteral("24:00:00"), "not a time"},
        {kStamp, QStringLiteral("2024-09-01T10:00:00"), "not a timestamp"},
        {kLVar, bytes("0102030405"), "longer than 4 bytes"},
    };
    for (const Refused& c : cases) {
        SCOPED_TRACE(c.words);
        QByteArray record(c.field.storedLength, 'x');
        const QByteArray before = record;
        try {
            data::writeValue(c.field, reinterpret_cast<uchar*>(record.data()), c.value,
                             QStringLiteral("TAULU"));
            ADD_FAILURE() << "accepted";
        } catch (const data::DataError& error) {
            EXPECT_EQ(error.kind(), data::ErrorKind::BadValue);
            EXPECT_EQ(error.table(), QStringLiteral("TAULU"));
            EXPECT_TRUE(error.detail().startsWith(QStringLiteral("field Kentta, value \"")));
            EXPECT_TRUE(error.detail().contains(QString::fromUtf8(c.words)))
                << error.detail().toStdString();
        }
        EXPECT_EQ(record, before);
    }
}

TEST(Codec, EndsOfEveryIntegerRangeAreHeld) {
    const std::vector<std::pair<data::TFieldCacheItem, std::pair<qint64, qint64>>> cases{
        {kByte, {-128, 127}},
        {kShort, {-32768, 32767}},
        {kLong, {-2147483648LL, 2147483647}},
        {kHuge, {std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()}},
        {kAuto, {-2147483648LL, 2147483647}},
        {kUnsigned1, {0, 255}},
        {kUnsigned2, {0, 65535}},
        {field(Kind::Unsigned, Storage::UnsignedBinary, 4), {0, 4294967295LL}},
    };
    for (const auto& [item, range] : cases)
        for (const qint64 value : {range.first, range.second, qint64{0}, qint64{1}}) {
            EXPECT_EQ(readBack(item, written(item, value)).toLongLong(), value);
            EXPECT_EQ(readBack(item, written(item, QString::number(value))).toLongLong(), value);
        }
}

// 40 significant bits: 2^-39 is the last place of 1.
TEST(Real48, RoundsToNearestTiesToEven) {
    const double place = std::ldexp(1.0, -39);
    const std::vector<std::pair<double, const char*>> cases{
        {0.1, "7d cd cc cc cc 4c"},  // 1.6 x 2^-4: .6 x 2^39 = 329853488332.8, up to ...333
        {1 + place / 2, "81 00 00 00 00 00"},
        {1 + place * 3 / 2, "81 02 00 00 00 00"},
        {1 + place * 0.501, "81 01 00 00 00 00"},
        {1 - place / 8, "81 00 00 00 00 00"},  // carries into the next power of two
        {std::ldexp(1.0, -129), "00 00 00 00 00 00"},
        {std::ldexp(1.5, -129), "01 00 00 00 00 00"},
        {std::ldexp(-1.5, -129), "01 00 00 00 00 80"},
        {std::ldexp(2 - place, 126), "ff ff ff ff ff 7f"},  // the largest number
    };
    for (const auto& [value, hex] : cases)
        EXPECT_EQ(written(kReal48, value).toHex(), bytes(hex).toHex()) << value;
    uchar six[6];
    EXPECT_FALSE(data::doubleToReal48(std::ldexp(2 - place / 2, 126), six))
        << "rounds up beyond it";
}

TEST(Real48, EveryNumberComesBackToItsBytes) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937_64 random(seed);
    for (int i = 0; i < 20000; ++i) {
        uchar wanted[6];
        for (uchar& byte : wanted)
            byte = static_cast<uchar>(random());
        if (wanted[0] == 0)
            continue;
        const double value = data::real48ToDouble(wanted);
        uchar got[6];
        ASSERT_TRUE(data::doubleToReal48(value, got));
        ASSERT_TRUE(std::equal(wanted, wanted + 6, got));
        // Its text form too, whatever its size.
        data::Value parsed;
        QString why;
        ASSERT_TRUE(data::textToValue(kReal48, data::valueToText(kReal48, value), parsed, &why));
        ASSERT_TRUE(data::doubleToReal48(parsed.toDouble(), got));
        ASSERT_TRUE(std::equal(wanted, wanted + 6, got));
    }
}

TEST(Windows1252, EveryByteComesBack) {
    QByteArray all(256, '\0');
    for (int i = 0; i < 256; ++i)
        all[i] = static_cast<char>(i);
    const QString text = data::fromWindows1252(all);
    EXPECT_EQ(text.at(0x80), QChar(0x20AC));  // €
    EXPECT_EQ(text.at(0x8A), QChar(0x0160));  // Š
    EXPECT_EQ(text.at(0x9F), QChar(0x0178));  // Ÿ
    EXPECT_EQ(text.at(0x81), QChar(0x0081));  // an open code
    EXPECT_EQ(text.at(0xE4), QChar(0x00E4));  // ä
    QByteArray back;
    ASSERT_TRUE(data::toWindows1252(text, back));
    EXPECT_EQ(back, all);

    back = "untouched";
    qsizetype bad = -1;
    EXPECT_FALSE(data::toWindows1252(QStringLiteral("ab\u0080"), back, &bad)) << "a control";
    EXPECT_EQ(bad, 2);
    EXPECT_EQ(back, "untouched");
}

TEST(Windows1252, OrderThatIgnoresCase) {
    const auto weights = [](const QString& text) {
        QByteArray codes;
        EXPECT_TRUE(data::toWindows1252(text, codes));
        for (char& c : codes)
            c = static_cast<char>(data::kCaseFoldWeight[static_cast<uchar>(c)]);
        return codes;
    };
    const QStringList ascending{QStringLiteral("Aalto"), QStringLiteral("ZORRO"),
                                QStringLiteral("åbo"),   QStringLiteral("ÅLAND"),
                                QStringLiteral("Äiti"),  QStringLiteral("äyriäinen"),
                                QStringLiteral("öljy")};
    for (qsizetype i = 1; i < ascending.size(); ++i)
        EXPECT_LT(weights(ascending[i - 1]), weights(ascending[i])) << ascending[i].toStdString();
    EXPECT_EQ(weights(QStringLiteral("abcxyzåäöšžéÿ")), weights(QStringLiteral("ABCXYZÅÄÖŠŽÉŸ")));
    EXPECT_NE(weights(QStringLiteral("é")), weights(QStringLiteral("e")));

    // Only letters that differ in case may share a weight.
    for (int a = 0; a < 256; ++a)
        for (int b = a + 1; b < 256; ++b)
            if (data::kCaseFoldWeight[a] == data::kCaseFoldWeight[b]) {
                const char codes[] = {static_cast<char>(a), static_cast<char>(b)};
                const QString pair = data::fromWindows1252(codes, 2);
                EXPECT_EQ(pair.at(0).toLower(), pair.at(1).toLower()) << a << ' ' << b;
            }
}

}  // namespace
