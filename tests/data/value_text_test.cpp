#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

#include "tests/data/record_fields.h"

using data::Kind;
using data::Storage;
using test::field;

namespace {

TEST(ShortestText, EverydayNumbersShowNoExponent) {
    const std::vector<std::pair<double, const char*>> cases{
        {0.0, "0"},
        {-0.0, "0"},
        {12.0, "12"},
        {-12.5, "-12.5"},
        {0.1, "0.1"},
        {0.1 + 0.2, "0.30000000000000004"},
        {1.255, "1.255"},
        {1.14 * 1.0, "1.14"},
        {1e-7, "0.0000001"},
        {1e-8, "1e-08"},
        {1e15, "1000000000000000"},
        {1e16, "1e+16"},
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(data::shortestText(value).toStdString(), text);
    EXPECT_EQ(data::shortestText(0.1F), QStringLiteral("0.1"));
    EXPECT_EQ(data::shortestText(25.5F), QStringLiteral("25.5"));
}

TEST(ShortestText, ReadsBackToTheSameBits) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937_64 random(seed);
    const auto wide = field(Kind::Float, Storage::Float, 8);
    const auto single = field(Kind::Float, Storage::Float, 4);
    data::Value back;
    for (int i = 0; i < 20000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (std::isfinite(value) && value != 0) {
            ASSERT_TRUE(data::textToValue(wide, data::valueToText(wide, value), back, nullptr));
            ASSERT_EQ(back.toDouble(), value);
        }
        const auto small = std::bit_cast<float>(static_cast<quint32>(random()));
        if (std::isfinite(small) && small != 0) {
            const double held = static_cast<double>(small);
            ASSERT_TRUE(data::textToValue(single, data::valueToText(single, held), back, nullptr));
            ASSERT_EQ(back.toDouble(), held);
        }
    }
}

TEST(ValueText, FormsOfEveryKind) {
    struct Case {
        data::TFieldCacheItem field;
        data::Value value;
        const char* text;
    };
    const QDateTime stamp(QDate(2024, 9, 1), QTime(7, 5, 3), Qt::LocalTime);
    const std::vector<Case> cases{
        {field(Kind::String, Storage::LString, 19), QStringLiteral("Äiti €"), "Äiti €"},
        {field(Kind::Date, Storage::Date, 4), QDate(987, 1, 2), "0987-01-02"},
        {field(Kind::Date, Storage::DateDouble, 8), QDate(2024, 9, 1), "2024-09-01"},
        {field(Kind::Date, Storage::Date, 4), QDate(), ""},
        {field(Kind::Time, Storage::Time, 4), QTime(7, 5, 3), "07:05:03"},
        {field(Kind::Timestamp, Storage::Timestamp, 8), stamp, "2024-09-01 07:05:03"},
        {field(Kind::Timestamp, Storage::Timestamp, 8), QDateTime(), ""},
        {field(Kind::Boolean, Storage::Logical, 1), true, "1"},
        {field(Kind::Boolean, Storage::Bit, 1, 8), false, "0"},
        {field(Kind::SmallInt, Storage::Integer, 1), qint64{-128}, "-128"},
        {field(Kind::Float, Storage::Float, 4), static_cast<double>(0.1F), "0.1"},
        {field(Kind::Float, Storage::Float, 8), static_cast<double>(0.1F), "0.10000000149011612"},
        // The 40 bits nearest to 0.1 are 0.1 + 2.3e-14; a double would show the difference.
        {field(Kind::Float, Storage::Real48, 6), 0.10000000000002274, "0.1"},
        {field(Kind::VarBinary, Storage::LVar, 6), test::bytes("0aff"), "0aff"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(data::valueToText(c.field, c.value).toStdString(), c.text);
        data::Value back;
        QString why;
        ASSERT_TRUE(data::textToValue(c.field, QString::fromUtf8(c.text), back, &why))
            << why.toStdString();
        EXPECT_EQ(test::written(c.field, back), test::written(c.field, c.value));
    }
    EXPECT_EQ(data::valueToText(cases[0].field, data::Value()), QString());
}

TEST(ValueText, TextsThatAreNoValueSayWhy) {
    struct Case {
        data::TFieldCacheItem field;
        const char* text;
        const char* why;
    };
    const auto small = field(Kind::SmallInt, Storage::Integer, 2);
    const auto wide = field(Kind::Float, Storage::Float, 8);
    const auto single = field(Kind::Float, Storage::Float, 4);
    const auto date = field(Kind::Date, Storage::Date, 4);
    const auto time = field(Kind::Time, Storage::Time, 4);
    const auto stamp = field(Kind::Timestamp, Storage::Timestamp, 8);
    const std::vector<Case> cases{
        {small, "32768", "out of range -32768..32767"},
        {small, "99999999999999999999", "out of range -32768..32767"},
        {small, "12.0", "not a whole number"},
        {small, " 12", "not a whole number"},
        {small, "1 000", "not a whole number"},
        {small, "+-1", "not a whole number"},
        {small, "--1", "not a whole number"},
        {small, "+", "not a whole number"},
        {wide, "1,5", "not a number"},
        {wide, "0x10", "not a number"},
        {wide, "inf", "not a number"},
        {wide, "-nan", "not a number"},
        {wide, ".", "not a number"},
        {wide, "1e", "not a number"},
        {wide, "1e400", "too large or too small for the field"},
        {single, "1e39", "too large or too small for the field"},
        {wide, "１", "not a number"},
        {date, "2024-9-1", "not a date (yyyy-mm-dd)"},
        {date, "0000-01-01", "not a date (yyyy-mm-dd)"},
        {date, "2024-13-01", "not a date (yyyy-mm-dd)"},
        {date, "20240901", "not a date (yyyy-mm-dd)"},
        {date, "2024-09-01 ", "not a date (yyyy-mm-dd)"},
        {date, "+024-09-01", "not a date (yyyy-mm-dd)"},
        {time, "7:05:03", "not a time (hh:mm:ss)"},
        {time, "07:60:00", "not a time (hh:mm:ss)"},
        {stamp, "2024-09-01", "not a timestamp (yyyy-mm-dd hh:mm:ss)"},
        {field(Kind::Boolean, Storage::Bit, 1, 1), "true", "not 0 or 1"},
        {field(Kind::RawBytes, Storage::Guid, 16), "0g", "not hexadecimal bytes"},
        {field(Kind::RawBytes, Storage::Guid, 2), "000000", "longer than 2 bytes"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        data::Value value = 77;
        QString why;
        EXPECT_FALSE(data::textToValue(c.field, QString::fromUtf8(c.text), value, &why));
        EXPECT_EQ(why.toStdString(), c.why);
        EXPECT_EQ(value, data::Value(77));
    }
    data::Value value;
    for (const char* text : {"+1.5", "1.5", "15e-1", "1.50"})
        EXPECT_TRUE(data::textToValue(wide, QString::fromUtf8(text), value, nullptr) &&
                    value.toDouble() == 1.5)
            << text;
}

// Read directly as a single: by way of a double this text would round twice and end one place
// lower.
TEST(ValueText, SinglesAreRoundedOnce) {
    const auto single = field(Kind::Float, Storage::Float, 4);
    data::Value value;
    // Just above the middle of 1 and 1 + 2^-23; a double holds only the middle itself.
    ASSERT_TRUE(data::textToValue(single, QStringLiteral("1.00000005960464477539062500000001"),
                                  value, nullptr));
    EXPECT_EQ(value.toDouble(), 1 + std::ldexp(1.0, -23));
}

}  // namespace
