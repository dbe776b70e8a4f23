#include "engines/shops/file_stat.h"

#include <gtest/gtest.h>

#include "engines/shops/key_order.h"
#include "tests/support/checks.h"

using namespace data;
using namespace engines::shops;

namespace {

const QString kTable = QStringLiteral("KOE");

// A file of 40-byte records with three keys, the numbers 0, 1 and 3:
//   0  bytes 1-4, signed integer, unique
//   1  bytes 5-17, LSTRING with a collating sequence, duplicates in insertion order; then bytes
//      18-25, float, descending
//   3  bytes 26-29, date, duplicates by address; bytes 30-33, STRING without case
QByteArray statBytes() {
    QByteArray bytes = QByteArray::fromHex(
        "2800 0010 0300 07000000 0000 00000000"
        "0100 0400 0201 05000000 01 00 0000 00 00"
        "0500 0d00 3301 05000000 0a 00 0000 01 00"
        "1200 0800 4301 05000000 02 00 0000 01 00"
        "1a00 0400 9301 05000000 03 00 0000 03 00"
        "1e00 0400 8305 05000000 00 00 0000 03 00");
    bytes += '\xAC' + QByteArray("SUOMI   ");
    for (int c = 0; c < 256; ++c)  // digits after letters, lower case equals upper case
        bytes += static_cast<char>(c >= 'a' && c <= 'z'   ? c - 'a' + 'A'
                                   : c >= '0' && c <= '9' ? c - '0' + 0xF0
                                                          : c);
    return bytes;
}

QByteArray record(qint32 number, const QByteArray& text, double amount, const char* date,
                  const QByteArray& code) {
    QByteArray bytes(40, '\0');
    bytes.replace(0, 4, QByteArray(reinterpret_cast<const char*>(&number), 4));
    bytes[4] = static_cast<char>(text.size());
    bytes.replace(5, text.size(), text);
    bytes.replace(17, 8, QByteArray(reinterpret_cast<const char*>(&amount), 8));
    bytes.replace(25, 4, QByteArray::fromHex(date));
    bytes.replace(29, 4, code);
    return bytes;
}

TEST(FileStat, KeysHaveAtMost255Bytes) {
    // records of 300 bytes, one key of them: a string
    QByteArray bytes = QByteArray::fromHex(
        "2c01 0010 0100 00000000 0000 00000000"
        "0100 ff00 0201 00000000 00 00 0000 00 00");
    EXPECT_EQ(parseFileStat(bytes, kTable).keys[0].length, 255);
    bytes.replace(18, 2, QByteArray::fromHex("0001"));
    EXPECT_THROW(parseFileStat(bytes, kTable), DataError);
}

TEST(FileStat, RefusesDamagedBytes) {
    const QByteArray whole = statBytes();
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_THROW(parseFileStat(whole.left(length), kTable), DataError) << length;
    const auto with = [&whole](qsizetype place, int byte) {
        QByteArray bytes = whole;
        bytes[place] = static_cast<char>(byte);
        return bytes;
    };
    for (const QByteArray& bytes :
         {with(4, 200), with(5, 1),   // more keys than in the file, than possible
          with(16, 0), with(16, 38),  // a segment before the record, beyond its end
          with(18, 0),                // an empty one
          with(47, 7),                // a missing collating sequence
          with(94, 1)}) {             // key 1 once more
        const DataError error = test::thrownBy([&] { parseFileStat(bytes, kTable); });
        EXPECT_EQ(error.kind(), ErrorKind::Damaged) << bytes.toHex().toStdString();
        EXPECT_EQ(error.table(), kTable);
    }
}

TEST(KeyOrder, FollowsTheTypes) {
    const FileStat stat = parseFileStat(statBytes(), kTable);
    ASSERT_EQ(stat.keys.size(), 4);
    EXPECT_TRUE(!stat.keys[0].duplicates && stat.keys[1].duplicates);
    EXPECT_TRUE(!stat.keys[1].byAddress && stat.keys[3].byAddress);
    EXPECT_TRUE(stat.keys[2].segments.empty());  // no such key in the file
    const KeyOrder numbers(stat.keys[0]);
    const KeyOrder texts(stat.keys[1]);
    const KeyOrder dates(stat.keys[3]);
    const auto plain = record(1, "abc", 1, "00000000", "ab  ");
    struct Case {
        const KeyOrder& order;
        QByteArray left, right;
        int segments, expected;
    };
    const std::vector<Case> cases{
        {numbers, record(-1, "", 0, "", ""), record(0, "", 0, "", ""), 1, -1},
        {numbers, record(256, "", 0, "", ""), record(255, "", 0, "", ""), 1, 1},
        {texts, plain, record(1, "ABC", 1, "", ""), 2, 0},
        {texts, plain, record(1, "abcd", 1, "", ""), 1, -1},
        {texts, record(1, "a1", 0, "", ""), record(1, "az", 0, "", ""), 1, 1},    // by weight
        {texts, record(1, "a", 2.5, "", ""), record(1, "A", -3, "", ""), 2, -1},  // descending
        {texts, record(1, "a", 2.5, "", ""), record(1, "A", -3, "", ""), 1, 0},
        // 31.12.2023 and 1.1.2024
        {dates, record(1, "", 0, "1f0ce707", ""), record(1, "", 0, "0101e807", ""), 1, -1},
        {dates, record(1, "", 0, "00000000", "AB"), record(1, "", 0, "00000000", "ab"), 2, 0},
    };
    for (size_t i = 0; i < cases.size(); ++i)
        EXPECT_EQ(cases[i].order.compare(cases[i].left, cases[i].right, cases[i].segments),
                  cases[i].expected)
            << "case " << i;
}

TEST(KeyOrder, FilledKeysAreLowestAndHighest) {
    const FileStat stat = parseFileStat(statBytes(), kTable);
    const std::vector<QByteArray> records{
        record(-2147483647 - 1, "", -1e300, "00000000", QByteArray(4, '\0')),
        record(0, "abc", 0, "0101e807", "zz"),
        record(2147483647, "999999999999", 1e300, "1f0c0f27", "\xFF")};
    for (const int number : {0, 1, 3}) {
        const KeyOrder order(stat.keys[static_cast<size_t>(number)]);
        // Copies key bytes to their places in a record.
        const auto asRecord = [&](const QByteArray& key) {
            QByteArray bytes(40, '\0');
            qsizetype place = 0;
            for (const SegmentStat& segment : order.stat().segments) {
                bytes.replace(segment.offset, segment.length, key.mid(place, segment.length));
                place += segment.length;
            }
            return bytes;
        };
        for (const QByteArray& one : records) {
            EXPECT_LE(order.compare(asRecord(order.filled(one, 0, false)), one, 2), 0) << number;
            EXPECT_GE(order.compare(asRecord(order.filled(one, 0, true)), one, 2), 0) << number;
            EXPECT_EQ(order.compare(asRecord(order.filled(one, 1, true)), one, 1), 0) << number;
        }
    }
}

}  // namespace
