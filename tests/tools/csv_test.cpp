// RFC 4180 reading and writing; bytes that transcripts.txt cannot show.

#include <gtest/gtest.h>

#include <QBuffer>
#include <vector>

#include "platform/csv.h"

namespace {

using Rows = std::vector<QStringList>;

Rows readAll(QByteArray bytes) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    platform::CsvReader reader(buffer);
    Rows rows;
    while (reader.next()) {
        QStringList row;
        for (int i = 0; i < reader.fieldCount(); ++i) {
            QString text;
            EXPECT_TRUE(platform::decodeUtf8(reader.field(i), text));
            row.append(text);
        }
        rows.push_back(reader.isBlank() ? QStringList{"<blank>"} : row);
    }
    return rows;
}

QByteArray write(const Rows& rows) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    platform::CsvWriter writer(buffer);
    for (const QStringList& row : rows) {
        for (const QString& field : row)
            writer.add(field);
        writer.endRecord();
    }
    writer.flush();
    return bytes;
}

TEST(Csv, ReadsRfc4180) {
    const std::pair<QByteArray, Rows> cases[] = {
        {"", {}},
        {"\xEF\xBB\xBF", {}},
        {"a,b", {{"a", "b"}}},
        {"a,b\nc,d\r\n", {{"a", "b"}, {"c", "d"}}},
        {"\xEF\xBB\xBF"
         "a\r\nb\r\n",
         {{"a"}, {"b"}}},
        {"a,\r\n,b\r\n", {{"a", ""}, {"", "b"}}},
        {"\r\n\"\"\r\n,\r\n", {{"<blank>"}, {""}, {"", ""}}},
        {"\"a,b\",\"c\r\nd\",\"say \"\"no\"\"\"\r\n", {{"a,b", "c\r\nd", "say \"no\""}}},
        {QByteArray("a\0b,c\n", 6), {{QString::fromUtf8(QByteArray("a\0b", 3)), "c"}}},
    };
    for (const auto& [bytes, rows] : cases)
        EXPECT_EQ(readAll(bytes), rows) << bytes.toStdString();
}

// Records longer than the buffer; quotes and line ends at its boundaries.
TEST(Csv, ReadsAcrossBufferBoundaries) {
    constexpr qsizetype kBuffer = 256 * 1024;
    const QByteArray tooLong(platform::CsvReader::kMaxRecordBytes + 1, 'x');
    EXPECT_THROW(readAll("a\n\"" + tooLong + "\"\n"), platform::CsvError);
    for (qsizetype pad = kBuffer - 4; pad <= kBuffer + 2; ++pad) {
        const QByteArray filler(pad, 'x');
        const Rows rows = readAll("\"" + filler + "\"\"q\"\r\nnext,row\r\n");
        ASSERT_EQ(rows.size(), 2U) << pad;
        EXPECT_EQ(rows[0].constFirst().size(), pad + 2) << pad;
        EXPECT_EQ(rows[1], QStringList({"next", "row"})) << pad;
    }
}

TEST(Csv, QuotesOnlyWhatNeedsIt) {
    EXPECT_EQ(write({{"a", "b c", ""}, {""}, {"x,y", "say \"no\"", "1\n2", "1\r2"}}),
              QByteArray("a,b c,\r\n\"\"\r\n\"x,y\",\"say \"\"no\"\"\",\"1\n2\",\"1\r2\"\r\n"));
    const Rows rows = {{QString(QChar::ByteOrderMark) + "a"}, {"å,ä", "ö\""}, {"", "", ""}};
    EXPECT_EQ(readAll(write(rows)), rows);
}

}  // namespace
