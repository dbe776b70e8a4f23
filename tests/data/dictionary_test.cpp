#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "data/dictionary/dictionary_source.h"
#include "data/dictionary/tbl_res_reader.h"
#include "data/error.h"
#include "data/record/record_layout.h"
#include "tests/data/record_fields.h"
#include "tests/support/checks.h"

using data::TTblResBase;
using data::TTblResReader;

namespace {

const char* const kUserSource = R"(# a table of three fields
table User
field 1 Id integer 4 0 4 INTEGER
field 2 Ok boolean 4 4 1 BIT 8
field 3 Data memo:22 1023 5 1024 NOTE
key 0 unique : Id
key 1 duplicates ignorecase : Ok id
)";

const char* const kUserBlock =
    "04 55736572 3030303200"
    "0100 02 4964     06000000 0400 0000 0000 0400 0100 0400"
    "0200 02 4f6b     04000000 0400 0800 0400 0100 1000 0100"
    "0300 04 44617461 03001600 ff03 0000 0500 0004 0c00 0004"
    "4142434400";

data::TableSource parse(const char* text) {
    return data::parseTableSource(QByteArray(text), "koe.dict");
}

// The error message of reading a block; empty if there is none.
QString readError(const QByteArray& block, const QString& table = "KOE") {
    std::vector<data::TFieldCacheItem> fields;
    try {
        TTblResReader::readBlock(block, table, fields);
    } catch (const data::DataError& error) {
        EXPECT_EQ(error.kind(), data::ErrorKind::Damaged);
        EXPECT_TRUE(fields.empty());
        return error.finnish() + u'|' + error.english();
    }
    return QString();
}

data::RecordLayout layoutOf(const char* table) {
    TTblResBase base;
    EXPECT_TRUE(TTblResReader::ReadResource(QString::fromLatin1(table), base)) << table;
    return data::RecordLayout(QString::fromLatin1(table), base.FFields);
}

TEST(DictionaryBlock, BytesOfASmallTable) {
    const data::TableSource table = parse(kUserSource);
    const QByteArray block = data::compileBlock(table.name, table.fields);
    EXPECT_EQ(block.toHex(), test::bytes(kUserBlock).toHex());

    std::vector<data::TFieldCacheItem> fields;
    ASSERT_TRUE(TTblResReader::readBlock(block, "USER", fields));
    EXPECT_EQ(fields, table.fields);
    EXPECT_EQ(fields[2].kindWord, 1441795U);
    EXPECT_EQ(fields[2].kind(), data::Kind::Memo);
    EXPECT_EQ(fields[2].qualifier(), 22);
    EXPECT_EQ(table.span(), 1029);
    ASSERT_EQ(table.keys.size(), 2U);
    EXPECT_TRUE(table.keys[0].unique);
    EXPECT_TRUE(table.keys[1].ignoreCase && !table.keys[1].unique);
    EXPECT_EQ(table.keys[1].fields, QStringList({"Ok", "id"}));
}

TEST(DictionaryBlock, EveryTruncationIsDamage) {
    const QByteArray block = test::bytes(kUserBlock);
    for (qsizetype length = 0; length < block.size(); ++length)
        EXPECT_TRUE(readError(block.left(length)).contains("breaks off")) << length;
    EXPECT_EQ(readError(block + "anything"), QString());
}

TEST(DictionaryBlock, OtherVersions) {
    QByteArray block = test::bytes(kUserBlock);
    block.replace("0002", "0001");
    // shown to the user in both languages
    const QString message =
        "Error - Resource [ALVKANTA]  in old format. Re-compile with RESMAIN.EXE";
    EXPECT_EQ(readError(block, "ALVKANTA"), message + u'|' + message);
    std::vector<data::TFieldCacheItem> fields;
    for (const char* version : {"0003", "0000", "abcd", "-002"})
        EXPECT_FALSE(TTblResReader::readBlock(block.replace(6, 4, version), "KOE", fields))
            << version;
}

TEST(DictionaryBlock, LongNamesAreCutAndOddWordsKept) {
    for (const int nameLength : {31, 32, 255}) {
        QByteArray block = test::bytes("03 4b6f65 3030303200 0100");
        block.append(static_cast<char>(nameLength)).append(QByteArray(nameLength, 'n'));
        // A string with a mask, and a declared length that differs from the stored one.
        block.append(test::bytes("01000000 1200 0100 0700 1300 0a00 0900 4142434400"));
        std::vector<data::TFieldCacheItem> fields;
        ASSERT_TRUE(TTblResReader::readBlock(block, "KOE", fields));
        EXPECT_EQ(fields[0].name, QString(31, 'n'));
        EXPECT_EQ(fields[0].storage, data::Storage::LString);
        EXPECT_EQ(std::tuple(fields[0].mask, fields[0].offset), std::tuple(1, 7));
        EXPECT_EQ(std::tuple(fields[0].storedLength, fields[0].declaredLength), std::tuple(19, 9));
    }
}

TEST(DictionarySource, FaultsNameFileLineAndWord) {
    const std::vector<std::pair<const char*, const char*>> cases{
        {"table A\nfiled 1", "line 2, \"filed\""},
        {"table A\ntable B", "line 2, \"B\""},
        {"table A\n\nfield 2 X integer 4 0 4 INTEGER", "line 3, \"2\": expected field number 1"},
        {"table A\nfield 1 X number 4 0 4 INTEGER", "\"number\": unknown kind"},
        {"table A\nfield 1 X integer 4 0 4 INT", "\"INT\": unknown storage type"},
        {"table A\nfield 1 X integer 4 0 65536 INTEGER", "\"65536\": expected a number"},
        {"table A\nfield 1 X integer 4 0 4", "expected: field NUMBER"},
        {"table A\nfield 1 X234567890123456789012345678901X integer 4 0 4 INTEGER", "at most 31"},
        {"table A\nfield 1 X integer 4 0 4 INTEGER\nfield 2 x integer 4 4 4 INTEGER",
         "line 3, \"x\": the table has this field already"},
        {"table A\nkey 0 unique : X", "\"X\": the table has no such field"},
        {"table A\nfield 1 X integer 4 0 4 INTEGER\nkey 1 unique : X", "expected key number 0"},
        {"table A\nfield 1 X integer 4 0 4 INTEGER\nkey 0 once : X", "expected unique"},
        {"# nothing", "no table statement"},
    };
    for (const auto& [source, words] : cases) {
        const data::DataError error = test::thrownBy([text = source] { parse(text); });
        EXPECT_EQ(error.kind(), data::ErrorKind::Syntax) << source;
        EXPECT_EQ(error.table(), "koe.dict");
        EXPECT_TRUE(error.detail().contains(QString::fromUtf8(words))) << error.what();
    }
    EXPECT_THROW(data::compileBlock(QString(), {}), data::DataError);
    EXPECT_THROW(data::compileBlock("Ł", {}), data::DataError);
}

TEST(CompiledTables, AreFoundByNameWhateverItsCase) {
    TTblResBase base;
    base.FFields.resize(3);
    ASSERT_TRUE(TTblResReader::ReadResource("AlvKanta", base));
    EXPECT_TRUE(base.FFieldsResFlag);
    EXPECT_EQ(base.FFieldsResName, "ALVKANTA");
    ASSERT_EQ(base.FFields.size(), 10U);
    EXPECT_FALSE(TTblResReader::ReadResource("MT", base));
    EXPECT_FALSE(base.FFieldsResFlag);
    EXPECT_TRUE(base.FFields.empty() && base.FFieldsResName.isEmpty());
    for (const char* name : {"", "../ALVKANTA", "X"})
        EXPECT_FALSE(TTblResReader::ReadResource(QString::fromLatin1(name), base)) << name;
}

TEST(CompiledTables, SpansAndSourcesAgree) {
    const QStringList spans =
        QString(
            "ALIRYHMA 207 ALVKANTA 152 ASALE 172 ASIAKAS 1932 ASRYHMA 237 "
            "INI 1187 KAMPPANJA 198 MAARAALE 98 MTRIVI 505 PRYHMA 153 SARAKE 32872 TRYHMA 253 "
            "TUOTE 888 TUOTE2 606 TUOTETXT 32877 UUSIHINTA 163 VAKIOLASKUTUS 358 VARSALDO 218 "
            "VERKKOKAUPASSA 24 WEBKLIITOS 132 WINOT 955 WINOTRI 565 X$FIELD 32 X$FILE 97 "
            "X$INDEX 10")
            .split(' ');
    QStringList names;
    for (qsizetype i = 0; i < spans.size(); i += 2) {
        names += spans[i];
        EXPECT_EQ(layoutOf(spans[i].toLatin1()).recordLength(), spans[i + 1].toInt())
            << spans[i].toStdString();
    }
    EXPECT_EQ(TTblResReader::tableNames(), names);

    const QStringList catalogueOnly{"HINTATASO", "HR", "MT", "MYYMALAHINNAT", "TOIMITTAJA"};
    std::vector<data::TableSource> sources = data::allTableSources();
    EXPECT_EQ(sources.size(), static_cast<size_t>(names.size() + catalogueOnly.size()));
    for (const data::TableSource& source : sources) {
        SCOPED_TRACE(source.name.toStdString());
        ASSERT_FALSE(source.keys.empty());
        const QByteArray block = TTblResReader::findBlock(source.name);
        EXPECT_EQ(block.isEmpty(), catalogueOnly.contains(source.name));
        if (block.isEmpty())
            continue;
        EXPECT_EQ(block, data::compileBlock(source.name, source.fields));
        std::vector<data::TFieldCacheItem> fields;
        ASSERT_TRUE(TTblResReader::readBlock(block, source.name, fields));
        EXPECT_EQ(fields, source.fields);
    }
}

TEST(RecordLayout, RefusesWhatNoRecordCanHold) {
    using data::Kind;
    using data::Storage;
    const auto lengthOf = [](const data::TFieldCacheItem& item, int recordLength = 0) {
        return data::RecordLayout("TAULU", {item}, recordLength).recordLength();
    };
    EXPECT_EQ(lengthOf(test::field(Kind::Float, Storage::Float, 8, 0, 2), 10), 10);
    EXPECT_THROW(lengthOf(test::field(Kind::Float, Storage::Float, 8, 0, 3), 10), data::DataError);
    const std::tuple<Kind, Storage, int, int> refused[] = {
        {Kind::Float, Storage::Float, 6, 0},     {Kind::Float, Storage::Integer, 4, 0},
        {Kind::Integer, Storage::Integer, 3, 0}, {Kind::Boolean, Storage::Bit, 1, 0},
        {Kind::Boolean, Storage::Bit, 1, 6},     {Kind::Boolean, Storage::Bit, 1, 256},
        {Kind::String, Storage::LString, 0, 0},  {static_cast<Kind>(99), Storage::Integer, 4, 0},
        {Kind::RawBytes, Storage::Guid, 0, 0}};
    for (const auto& [kind, storage, length, mask] : refused)
        EXPECT_THROW(lengthOf(test::field(kind, storage, length, mask)), data::DataError);
}

class ModuleFile : public ::testing::Test {
  protected:
    ~ModuleFile() override { TTblResReader::setModuleFile(QString()); }

    QString write(const QByteArray& bytes) {
        const QString name = m_folder.filePath("tables.bin");
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(bytes), bytes.size());
        return name;
    }

    QTemporaryDir m_folder;
};

TEST_F(ModuleFile, ComesFirstAndKeepsOtherVersionsApart) {
    const auto renamed = [](const char* name, const char* version = "0002") {
        const QByteArray text(name);
        return test::bytes(kUserBlock)
            .replace("0002", version)
            .replace("\x04User", static_cast<char>(text.size()) + text);
    };
    TTblResReader::setModuleFile(write(renamed("Tryhma#1") + renamed("Oldy", "0001") +
                                       renamed("Newy", "0003") + renamed("AlvKanta")));

    TTblResBase base;
    EXPECT_TRUE(TTblResReader::ReadResource("tryhma#1", base));
    EXPECT_TRUE(TTblResReader::ReadResource("alvkanta", base));
    EXPECT_EQ(base.FFields.size(), 3U) << "the module's table, not the built-in one";
    EXPECT_FALSE(TTblResReader::ReadResource("NEWY", base));
    EXPECT_THROW(TTblResReader::ReadResource("OLDY", base), data::DataError);
    EXPECT_TRUE(TTblResReader::ReadResource("TUOTE", base));
    EXPECT_TRUE(TTblResReader::tableNames().contains("TRYHMA#1"));

    TTblResReader::setModuleFile(QString());
    EXPECT_TRUE(TTblResReader::ReadResource("alvkanta", base));
    EXPECT_EQ(base.FFields.size(), 10U);
}

TEST_F(ModuleFile, AnInvalidFileLeavesThePreviousOne) {
    const QByteArray block = test::bytes(kUserBlock);
    TTblResReader::setModuleFile(write(block));
    for (qsizetype cut = 1; cut < block.size(); ++cut)
        EXPECT_THROW(TTblResReader::setModuleFile(write(block + block.left(cut))), data::DataError)
            << cut;
    EXPECT_THROW(TTblResReader::setModuleFile(m_folder.filePath("none.bin")), data::DataError);
    TTblResBase base;
    EXPECT_TRUE(TTblResReader::ReadResource("USER", base));
}

TEST(DataErrorText, IsOneLineThatSaysWhatAndWhere) {
    const data::DataError error(data::ErrorKind::Locked, "TUOTE",
                                "record  \"12\"\r\nheld\nby KASSA1", 84);
    EXPECT_STREQ(error.what(),
                 R"(locked by another program: TUOTE: record  "12" held by KASSA1 (code 84))");
    EXPECT_EQ(error.finnish(),
              R"(Tietue on toisen ohjelman käytössä: TUOTE: record  "12" held by KASSA1 )"
              "(virhekoodi 84). Yritä uudelleen, kun toinen ohjelma on vapauttanut sen.");
    EXPECT_EQ(data::DataError(data::ErrorKind::DiskFull, QString(), QString()).finnish(),
              "Levy on täynnä. Vapauta levytilaa ja yritä uudelleen.");
}

}  // namespace
