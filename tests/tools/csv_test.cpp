// RFC 4180 reading and writing; bytes that transcripts.txt cannot show.

#include <gtest/gtest.h>

#include <QBuffer>
#include <vector>

#include "tools/zavdb/csv.h"

namespace {

using Rows = std::vector<QStringList>;

Rows readAll(QByteArray bytes) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    tools::CsvReader reader(buffer);
    Rows rows;
    while (reader.next()) {
        QStringList row;
        for (int i = 0; i < reader.fieldCount(); ++i) {
            QString text;
            EXPECT_TRUE(tools::decodeUtf8(reader.field(i), text));
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
    tools::CsvWriter writer(buffer);
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

TEST(Csv, RefusesMalformedTextNamingTheLine) {
    const struct {
        QByteArray bytes;
        qint64 line;
        const char* detail;
    } cases[] = {
        {"a\nb\"c\n", 2, "quote"},
        {"a\n\"b\"c\n", 2, "closing quote"},
        {"a\n\nb,\"c\nd\n", 3, "no closing quote"},
        {"a\nb\rc\n", 2, "carriage return"},
        {"a\n\"" + QByteArray(tools::CsvReader::kMaxRecordBytes + 1, 'x') + "\"\n", 2, "longer"},
    };
    for (const auto& c : cases) {
        try {
            readAll(c.bytes);
            ADD_FAILURE() << c.detail;
        } catch (const tools::CsvError& error) {
            EXPECT_EQ(error.line(), c.line) << c.detail;
            EXPECT_TRUE(error.detail().contains(QLatin1String(c.detail)))
                << error.detail().toStdString();
        }
    }
}

// Records longer than the buffer; quotes and line ends at its boundaries.
TEST(Csv, ReadsAcrossBufferBoundaries) {
    constexpr qsizetype kBuffer = 256 * 1024;
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

TEST(Csv, Utf8IsStrict) {
    QString text;
    EXPECT_TRUE(tools::decodeUtf8("\xC3\xA4\xE2\x82\xAC", text));
    EXPECT_EQ(text, QString::fromUtf8("ä€"));
    EXPECT_TRUE(tools::decodeUtf8("\xEF\xBB\xBFx", text));
    EXPECT_EQ(text.size(), 2);
    for (const char* bad : {"\xFF", "\xC3", "\xE4", "\xC0\xAF", "\xED\xA0\x80", "a\x80"})
        EXPECT_FALSE(tools::decodeUtf8(bad, text)) << bad;
}

}  // namespace
