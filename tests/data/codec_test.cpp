#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "data/error.h"
#include "data/record/plain_text.h"
#include "data/windows1252.h"
#include "tests/data/record_fields.h"
#include "tests/support/checks.h"

using data::Kind;
using data::Storage;
using test::bytes;
using test::field;
using test::readBack;
using test::written;

namespace {

struct Golden {
    data::TFieldCacheItem field;
    data::Value value;
    const char* text;  // hexadecimal bytes, or words of the error
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

// Value texts with their bytes, separated by '|'.
struct Texts {
    data::TFieldCacheItem field;
    const char* pairs;
};

template <typename Check>
void forEach(const std::vector<Texts>& cases, Check check) {
    for (const auto& [item, pairs] : cases)
        for (const QString& pair : QString(pairs).split(u'|')) {
            SCOPED_TRACE(pair.toStdString());
            check(item, pair.section('=', 0, 0),
                  QByteArray::fromHex(pair.section('=', 1).toLatin1()));
        }
}

TEST(Codec, TextsAndBytesOfEveryStorageType) {
    const std::vector<Texts> cases{
        {kLString, "äB=02e44200|abc=03616263|=00000000"},
        {kZString, "äB=e4420000|a b=61206200"},
        {kPadded, "äB=e4422020|a bc=61206263|=20202020"},
        {kNote, "a\r\nb€=610d0a628000"},
        {kLVar, "0102=020001020000|0aff=02000aff0000"},
        {kDate, "2024-09-01=0109e807|0987-01-02=0201db03|=00000000"},
        {kDays, "1899-12-31=000000000000f03f|2000-01-01=00000000c0d5e140|=0000000000000000"},
        {kTime, "07:05:03=00030507"},
        {kStamp, "=0000000000000000"},
        {kLogical, "1=01|0=00"},
        {kByte, "-128=80|127=7f"},
        {kShort, "-32768=0080|32767=ff7f"},
        {kLong, "305419896=78563412|2147483647=ffffff7f"},
        {kHuge, "-9223372036854775808=0000000000000080|9223372036854775807=ffffffffffffff7f"},
        {kAuto, "1=01000000"},
        {kUnsigned1, "255=ff"},
        {kUnsigned2, "65535=ffff|0=0000"},
        {kSingle, "25.5=0000cc41|0.1=cdcccc3d"},
        {kDouble, "-0.1=9a9999999999b9bf|0.10000000149011612=000000a09999b93f"},
        // The 40 bits nearest to 0.1 are 0.1 + 2.3e-14; a double would show the difference.
        {kReal48, "1=810000000000|-1=810000000080|10=840000000020|0=000000000000|0.1=7dcdcccccc4c"},
        {kBlob, "0102030405060708=0102030405060708"},
        {kGuid, "000102030405060708090a0b0c0d0e0f=000102030405060708090a0b0c0d0e0f"}};
    forEach(cases, [](const auto& item, const QString& text, const QByteArray& stored) {
        data::Value value;
        QString why;
        ASSERT_TRUE(data::textToValue(item, text, value, &why)) << why.toStdString();
        EXPECT_EQ(written(item, value).toHex(), stored.toHex());
        EXPECT_EQ(data::valueToText(item, readBack(item, stored)), text);
    });
    EXPECT_EQ(data::valueToText(kLString, data::Value()), QString());
}

TEST(Codec, TimesKeepHundredthsAndTimestampsMilliseconds) {
    EXPECT_EQ(written(kTime, QTime(23, 59, 58, 760)).toHex(), "4c3a3b17");
    EXPECT_EQ(readBack(kTime, bytes("4c3a3b17")), data::Value(QTime(23, 59, 58, 760)));
    const std::pair<QDateTime, const char*> stamps[] = {
        {utc(1970, 1, 1), "0080b5f7f57f9f08"},
        {utc(1969, 12, 31, 23, 59, 59, 999), "f058b5f7f57f9f08"}};
    for (const auto& [time, hex] : stamps) {
        EXPECT_EQ(written(kStamp, time).toHex(), hex);
        EXPECT_EQ(readBack(kStamp, bytes(hex)).toDateTime().toUTC(), time);
    }
    const QDateTime local(QDate(2024, 9, 1), QTime(7, 5, 3), Qt::LocalTime);
    EXPECT_EQ(data::valueToText(kStamp, local), "2024-09-01 07:05:03");
    data::Value back;
    ASSERT_TRUE(data::textToValue(kStamp, "2024-09-01 07:05:03", back, nullptr));
    EXPECT_EQ(back.toDateTime(), local);
}

// Lengths beyond the area, missing terminators, impossible dates (30 February, years 0 and 10000, a
// day with a fraction, not-a-number), 24 o'clock, a REAL48 without exponent.
TEST(Codec, OddBytesAreReadWithinTheirField) {
    const std::vector<Texts> cases{
        {kLString, "abc=09616263"},
        {kZString, "abc=61626364|a=61006364"},
        {kPadded, "=00000000|  a=20206120"},
        {kNote, "abcde=616263646566"},
        {kLVar, "01020304=ffff01020304"},
        {kDate, "=1e02e807|=01010000|=01011027"},
        {kDays,
         "2000-01-01=00000000d8d5e140|=000000000000e03f|=000000000000f87f|=000000000000f07f"},
        {kTime, "00:00:00=00000000|=00000018|=64000000"},
        {kStamp, "=ffffffffffffffff"},
        {kLogical, "1=40"},
        {kReal48, "0=000102030485"}};
    forEach(cases, [](const auto& item, const QString& text, const QByteArray& stored) {
        EXPECT_EQ(data::valueToText(item, readBack(item, stored)), text);
    });
}

// The quick way of imports must store what the general way stores, and leave the rest to it.
TEST(Codec, PlainTextsAreStoredAsInTheGeneralWay) {
    const std::vector<data::TFieldCacheItem> items{kLString,
                                                   kZString,
                                                   kPadded,
                                                   kNote,
                                                   kLVar,
                                                   kDate,
                                                   kDays,
                                                   kTime,
                                                   kStamp,
                                                   kLogical,
                                                   kByte,
                                                   kShort,
                                                   kLong,
                                                   kHuge,
                                                   kAuto,
                                                   kSingle,
                                                   kBlob,
                                                   kGuid,
                                                   kDouble,
                                                   kReal48,
                                                   kUnsigned1,
                                                   kUnsigned2,
                                                   field(Kind::Boolean, Storage::Bit, 1, 4)};
    QStringList texts{"0",          "1",
                      "-1",         "127",
                      "128",        "-32768",
                      "32768",      "65536",
                      "2147483648", "+1",
                      "-0",         "-0.0",
                      "1.50",       ".5",
                      "5.",         "1e3",
                      "1e999",      "inf",
                      "nan",        "0x1",
                      " 1",         "99999999999999999999",
                      "äÖ",         "abc",
                      "abcd",       "€",
                      "\u0081",     "ā",
                      "a\n",        "2024-02-29",
                      "2023-02-29", "0000-01-01",
                      "1899-12-30", "20240901",
                      "true"};
    std::mt19937 random(5);
    const QString letters = QStringLiteral("0123456789-.+eE aäÿ€:");
    for (int i = 0; i < 20000; ++i) {
        QString text;
        for (auto length = random() % 11 + 1; length > 0; --length)
            text += letters[static_cast<qsizetype>(random() % 13 + (random() % 4 == 0 ? 8 : 0))];
        texts += text;
    }
    int plain = 0;
    for (const data::TFieldCacheItem& item : items) {
        for (const QString& text : std::as_const(texts)) {
            QByteArray quick(item.storedLength, '\x5A');
            QByteArray general = quick;
            data::Value value;
            const bool stored =
                data::writePlainText(item, reinterpret_cast<uchar*>(quick.data()), text.toUtf8());
            if (stored && data::textToValue(item, text, value, nullptr))
                data::writeValue(item, reinterpret_cast<uchar*>(general.data()), value, QString());
            ASSERT_EQ(quick.toHex(), general.toHex())
                << text.toStdString() << " storage " << static_cast<int>(item.storage);
            plain += stored ? 1 : 0;
        }
    }
    EXPECT_GT(plain, 20000);
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
    const std::vector<Golden> cases{{kShort, "-12", "f4 ff"},
                                    {kShort, 12.0, "0c 00"},
                                    {kShort, true, "01 00"},
                                    {kDouble, "1.5", "00 00 00 00 00 00 f8 3f"},
                                    {kSingle, 2, "00 00 00 40"},
                                    {kLogical, 1, "01"},
                                    {kLogical, "0", "00"},
                                    {kDate, "2024-09-01", "01 09 e8 07"},
                                    {kDate, "20240901", "01 09 e8 07"},
                                    {kDays, "20000101", "00 00 00 00 c0 d5 e1 40"},
                                    {kDate, QString(), "00 00 00 00"},
                                    {kTime, "01:02:03", "00 03 02 01"},
                                    {kZString, 12, "31 32 00 00"},
                                    {kZString, 0.5, "30 2e 35 00"},
                                    {kLVar, "0aFF", "02 00 0a ff 00 00"},
                                    {kBlob, QString(), "00 00 00 00 00 00 00 00"},
                                    {kShort, data::Value(), "00 00"},
                                    {kPadded, data::Value(), "20 20 20 20"},
                                    {kDouble, -0.0, "00 00 00 00 00 00 00 00"},
                                    {kSingle, 0.1, "cd cc cc 3d"}};
    for (const Golden& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(written(c.field, c.value).toHex(), bytes(c.text).toHex());
    }
}

TEST(Codec, RefusedValuesChangeNothingAndAreNamed) {
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    const std::vector<Golden> cases{
        {kByte, 128, "\"128\": out of range -128..127"},
        {kByte, -129, "\"-129\": out of range"},
        {kShort, 32768, "\"32768\": out of range -32768..32767"},
        {kLong, qint64{2147483648}, "out of range -2147483648..2147483647"},
        {kUnsigned1, 256, "out of range 0..255"},
        {kUnsigned2, -1, "out of range 0..65535"},
        {kHuge, "9223372036854775808", "out of range"},
        {kShort, 1.5, "\"1.5\": not a whole number"},
        {kShort, kInfinite, "not a whole number"},
        {kShort, "1,5", "\"1,5\": not a whole number"},
        {kShort, QDate(2024, 9, 1), "\"2024-09-01\": not a whole number"},
        {kLogical, 2, "\"2\": not 0 or 1"},
        {kSingle, 3.5e38, "too large for the field"},
        {kDouble, kInfinite, "not a finite number"},
        {kDouble, std::numeric_limits<double>::quiet_NaN(), "not a finite number"},
        {kReal48, std::ldexp(1.0, 127), "too large for the field"},
        {kDouble, "abc", "\"abc\": not a number"},
        {kLString, "abcd", "\"abcd\": text longer than 3 characters"},
        {kZString, "abcd", "text longer than 3 characters"},
        {kPadded, "abcde", "text longer than 4 characters"},
        {kNote, "abcdef", "text longer than 5 characters"},
        {kLString, "aŁ", "character Ł (U+0141) is not in Windows-1252"},
        {kNote, "a\U0001F600", "character \U0001F600 (U+1F600) is not"},
        {kZString, QString(1, QChar(0)), "zero character"},
        {kDate, "2023-02-29", "\"2023-02-29\": not a date"},
        {kDate, "20230229", "not a date"},
        {kDate, 45, "\"45\": not a date"},
        {kDays, QDate(1899, 12, 30), "stands for the empty date"},
        {kDate, QDate(10000, 1, 1), "year outside 1..9999"},
        {kTime, "24:00:00", "not a time"},
        {kStamp, "2024-09-01T10:00:00", "not a timestamp"},
        {kLVar, bytes("0102030405"), "longer than 4 bytes"}};
    for (const Golden& c : cases) {
        SCOPED_TRACE(c.text);
        QByteArray record(c.field.storedLength, 'x');
        const QByteArray before = record;
        const data::DataError error = test::thrownBy([&] {
            data::writeValue(c.field, reinterpret_cast<uchar*>(record.data()), c.value, "TAULU");
        });
        EXPECT_EQ(error.kind(), data::ErrorKind::BadValue);
        EXPECT_EQ(error.table(), "TAULU");
        EXPECT_TRUE(error.detail().startsWith("field Kentta, value \""));
        EXPECT_TRUE(error.detail().contains(QString::fromUtf8(c.text))) << error.what();
        EXPECT_EQ(record, before);
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

// Random numbers of every width: their text reads back to the same bytes.
TEST(ShortestText, ReadsBackToTheSameBytes) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937_64 random(seed);
    for (int i = 0; i < 20000; ++i)
        for (const auto& item : {kReal48, kSingle, kDouble}) {
            const quint64 bits = random();
            QByteArray record(reinterpret_cast<const char*>(&bits), 8);
            const data::Value value = readBack(item, record);
            if (!std::isfinite(value.toDouble()) || value.toDouble() == 0)
                continue;
            record.truncate(item.storedLength);
            ASSERT_EQ(written(item, value), record);
            data::Value parsed;
            ASSERT_TRUE(data::textToValue(item, data::valueToText(item, value), parsed, nullptr));
            ASSERT_EQ(written(item, parsed), record);
        }
}

TEST(ShortestText, EverydayNumbersShowNoExponent) {
    const QString texts =
        "0|12|-12.5|0.1|0.30000000000000004|1.255|0.0000001|1e-08|1000000000000000|1e+16";
    for (const QString& text : texts.split(u'|'))
        EXPECT_EQ(data::shortestText(text.toDouble()), text);
    EXPECT_EQ(data::shortestText(-0.0), "0");
    EXPECT_EQ(data::shortestText(0.1F), "0.1");
}

TEST(ValueText, TextsThatAreNoValueSayWhy) {
    struct Case {
        data::TFieldCacheItem field;
        const char* why;
        const char* texts;  // separated by '|'
    };
    const std::vector<Case> cases{
        {kShort, "out of range -32768..32767", "32768|99999999999999999999"},
        {kShort, "not a whole number", "12.0| 12|1 000|+-1|--1|+"},
        {kDouble, "not a number", "1,5|0x10|inf|-nan|.|1e|１"},
        {kDouble, "too large or too small for the field", "1e400"},
        {kSingle, "too large or too small for the field", "1e39"},
        {kDate, "not a date (yyyy-mm-dd)",
         "2024-9-1|0000-01-01|2024-13-01|20240901|2024-09-01 |+024-09-01"},
        {kTime, "not a time (hh:mm:ss)", "7:05:03|07:60:00"},
        {kStamp, "not a timestamp (yyyy-mm-dd hh:mm:ss)", "2024-09-01"},
        {field(Kind::Boolean, Storage::Bit, 1, 1), "not 0 or 1", "true"},
        {kGuid, "not hexadecimal bytes", "0g"},
        {field(Kind::RawBytes, Storage::Guid, 2), "longer than 2 bytes", "000000"}};
    for (const Case& c : cases)
        for (const QString& text : QString(c.texts).split(u'|')) {
            SCOPED_TRACE(text.toStdString());
            data::Value value = 77;
            QString why;
            EXPECT_FALSE(data::textToValue(c.field, text, value, &why));
            EXPECT_EQ(why.toStdString(), c.why);
            EXPECT_EQ(value, data::Value(77));
        }
    data::Value value;
    for (const char* text : {"+1.5", "1.5", "15e-1", "1.50"})
        EXPECT_TRUE(data::textToValue(kDouble, QString::fromUtf8(text), value, nullptr) &&
                    value.toDouble() == 1.5)
            << text;
}

// Read directly as a single: by way of a double this text would round twice and end one place
// lower.
TEST(ValueText, SinglesAreRoundedOnce) {
    data::Value value;
    // Just above the middle of 1 and 1 + 2^-23; a double holds only the middle itself.
    ASSERT_TRUE(data::textToValue(kSingle, "1.00000005960464477539062500000001", value, nullptr));
    EXPECT_EQ(value.toDouble(), 1 + std::ldexp(1.0, -23));
}

TEST(Windows1252, EveryByteComesBack) {
    QByteArray all(256, '\0');
    for (int i = 0; i < 256; ++i)
        all[i] = static_cast<char>(i);
    const QString text = data::fromWindows1252(all);
    EXPECT_EQ(text.at(0x80), QChar(0x20AC));  // €
    EXPECT_EQ(text.at(0x8A), QChar(0x0160));  // Š
    EXPECT_EQ(text.at(0x9F), QChar(0x0178));  // Ÿ
    EXPECT_EQ(text.at(0x81), QChar(0x0081));  // an undefined code
    EXPECT_EQ(text.at(0xE4), QChar(0x00E4));  // ä
    QByteArray back;
    ASSERT_TRUE(data::toWindows1252(text, back));
    EXPECT_EQ(back, all);

    back = "untouched";
    qsizetype bad = -1;
    EXPECT_FALSE(data::toWindows1252("ab\u0080", back, &bad)) << "a control";
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
    const QStringList ascending = QString("Aalto ZORRO åbo ÅLAND Äiti äyriäinen öljy").split(' ');
    for (qsizetype i = 1; i < ascending.size(); ++i)
        EXPECT_LT(weights(ascending[i - 1]), weights(ascending[i])) << ascending[i].toStdString();
    EXPECT_EQ(weights("abcxyzåäöšžéÿ"), weights("ABCXYZÅÄÖŠŽÉŸ"));
    EXPECT_NE(weights("é"), weights("e"));

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
