// zavdb load and save: bytes in, the same bytes out; a damaged file changes nothing.

#include "engines/embedded/embedded_database.h"
#include "tests/tools/zavdb_program.h"

namespace {

using namespace std::string_literals;

QByteArray raw(const std::string& bytes) {
    return QByteArray::fromStdString(bytes);
}

class Sequential : public test::ZavdbProgram {
  protected:
    // RAAKA: 8 bytes, the first four a unique number. MUISTIO: a number and a text area of 20.
    void SetUp() override {
        std::vector<data::TableSource> tables = data::allTableSources();
        for (const char* text : {"table RAAKA\n"
                                 "field 1 Nro integer 4 0 4 INTEGER\n"
                                 "field 2 Loput string 4 4 4 STRING\n"
                                 "key 0 unique : Nro\n",
                                 "table MUISTIO\n"
                                 "field 1 Nro integer:29 4 0 4 AUTOINCREMENT\n"
                                 "field 2 Teksti memo:22 19 4 20 NOTE\n"
                                 "key 0 unique : Nro\n"})
            tables.push_back(data::parseTableSource(text, QStringLiteral("test.dict")));
        engines::createEmbedded(path("a"), tables);
        done({"add", "A", "a"});
    }

    QByteArray load(const char* table, const QByteArray& bytes) {
        return done({"load", "A", table, file("in.seq", bytes)});
    }
    QByteArray saved(const char* table) {
        done({"save", "A", table, path("out.seq")});
        QFile written(path("out.seq"));
        EXPECT_TRUE(written.open(QIODevice::ReadOnly));
        return written.readAll();
    }
};

TEST_F(Sequential, AwkwardBytesComeBack) {
    const QByteArray bytes =
        raw("8,\x01\0\0\0\r\n\x1A,\r\n"s
            "8,\x02\0\0\0\0\0\0\0\r\n"s
            "8,\x03\0\0\0"
            "8,A\xFF\r\n"s
            "8,\x1A\r\n,    \r\n\x1A"s);
    EXPECT_EQ(load("RAAKA", bytes), QByteArray("4 records loaded.\n"));
    EXPECT_EQ(saved("RAAKA"), bytes);
    EXPECT_EQ(done({"sql", "A", "select max(Nro) from RAAKA"}),
              QByteArray("max(Nro)\r\n738856218\r\n"));  // 1A 0D 0A 2C
    done({"check", "A"});
    // a table without records is an end mark alone
    EXPECT_EQ(saved("MUISTIO"), QByteArray("\x1A"));
}

TEST_F(Sequential, OtherWaysToWriteTheSame) {
    const QByteArray record = raw("8,\x07\0\0\0abcd"s);
    const char* noMark = "record loaded; the file has no end mark";
    const struct {
        QByteArray bytes;
        const char* message;
    } cases[] = {
        {"", "0 records loaded; the file has no end mark"},
        {"\x1A", "0 records loaded.\n"},
        {raw("8 \x01\0\0\0    \r\n\x1A"s), "1 record loaded.\n"},    // a blank for the comma
        {raw("8,\x02\0\0\0    \n\x1A\r\n"s), "1 record loaded.\n"},  // LF alone
        {raw("008,\x03\0\0\0    \r\n\x1A\x1A\0\0"s), "1 record loaded.\n"},  // a filled last block
        {raw("8,\x04\0\0\0    \r\n"s), noMark},
    };
    for (const auto& c : cases)
        EXPECT_TRUE(load("RAAKA", c.bytes).contains(c.message)) << c.bytes.toHex().constData();
    EXPECT_EQ(saved("RAAKA"), raw("8,\x01\0\0\0    \r\n8,\x02\0\0\0    \r\n"s
                                  "8,\x03\0\0\0    \r\n8,\x04\0\0\0    \r\n\x1A"s));
}

TEST_F(Sequential, DamageNamesFileRecordAndByteAndChangesNothing) {
    load("RAAKA", raw("8,\x01\0\0\0abcd\r\n\x1A"s));
    const QByteArray before = saved("RAAKA");
    const QByteArray good = raw("8,\x02\0\0\0abcd\r\n"s);  // 12 bytes
    const struct {
        QByteArray rest;
        QStringList words;
    } cases[] = {
        {"7,abcdefg\r\n\x1A", {"record 2, byte 12", "7 bytes", "have 8 bytes"}},
        {"9,abcdefghi\r\n\x1A", {"record 2, byte 12", "9 bytes"}},
        {"99999999999999999999,", {"record 2, byte 12", "no sensible number"}},
        {"-8,abcdefgh\r\n", {"record 2, byte 12", "length", "0x2d"}},
        {"abcdefgh\r\n", {"record 2, byte 12", "length", "0x61"}},
        {"\r\n\x1A", {"record 2, byte 12", "0x0d"}},
        {"8;abcdefgh\r\n", {"record 2, byte 13", "comma", "0x3b"}},
        {"8", {"record 2, byte 13", "within the record's length"}},
        {"8,abc", {"record 2, byte 14", "3 of the record's 8 bytes"}},
        {"8,", {"record 2, byte 14", "0 of the record's 8 bytes"}},
        {"8,abcdefgh", {"record 2, byte 22", "line end"}},
        {"8,abcdefgh\r", {"record 2, byte 23", "line end"}},
        {"8,abcdefghi\r\n", {"record 2, byte 22", "0x69", "byte 12 is wrong"}},
        {"8,abcdefgh\x1A", {"record 2, byte 22", "0x1a"}},
        {"\x1A"
         "8,abcdefgh\r\n",
         {"byte 13", "0x38", "after the end mark"}},
        {raw("8,\x02\0\0\0wxyz\r\n\x1A"s), {"record 2, byte 12", "RAAKA", "key 0", "Nro \"2\""}},
        {raw("8,\x01\0\0\0wxyz\r\n\x1A"s), {"record 2, byte 12", "key 0", "Nro \"1\""}},
    };
    for (const auto& c : cases) {
        refused({"load", "A", "RAAKA", file("bad.seq", good + c.rest)},
                QStringList{"bad.seq"} + c.words);
        EXPECT_EQ(saved("RAAKA"), before) << c.rest.constData();
    }
    refused({"load", "A", "RAAKA", path("nosuch.seq")}, {"nosuch.seq"});
    refused({"load", "A", "NOSUCH", file("bad.seq", good)}, {"NOSUCH"});
    refused({"save", "A", "RAAKA", path("nosuch/out.seq")}, {"nosuch/out.seq"});
}

TEST_F(Sequential, RecordsEndWithinTheirTextArea) {
    load("MUISTIO", raw("4,\0\0\0\0\r\n"s         // no text; asks for a number
                        "8,\x09\0\0\0abc\0\r\n"s  // cut after its end
                        "24,\0\0\0\0abcdefghijklmnopqrs\0\r\n\x1A"s));
    EXPECT_EQ(saved("MUISTIO"),
              raw("24,\x01\0\0\0"s + std::string(20, '\0') + "\r\n24,\x09\0\0\0abc"s +
                  std::string(17, '\0') + "\r\n24,\x0A\0\0\0abcdefghijklmnopqrs\0\r\n\x1A"s));
    refused({"load", "A", "MUISTIO", file("bad.seq", raw("3,\0\0\0\r\n"s))},
            {"record 1, byte 0", "3 bytes", "4 to 24 bytes"});
    refused({"load", "A", "MUISTIO", file("bad.seq", "25,")}, {"25 bytes", "4 to 24 bytes"});
}

TEST_F(Sequential, TheCatalogueKeepsDescribingTheTables) {
    const QByteArray before = saved("X$File");
    QByteArray more = before;
    const qsizetype header = more.indexOf(',') + 1;
    more[header] = '\x7F';  // another number for the first table
    const qsizetype record = more.indexOf("\r\n", header + more.left(header - 1).toInt()) + 2;
    refused({"load", "A", "X$File", file("more.seq", more.left(record) + '\x1A')}, {"catalogue"});
    EXPECT_EQ(saved("X$File"), before);
}

}  // namespace
