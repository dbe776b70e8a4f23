#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <map>

#include "data/dictionary/dictionary_source.h"
#include "data/dictionary/tbl_res_reader.h"
#include "data/error.h"
#include "data/record/record_layout.h"
#include "tests/data/record_fields.h"

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
    return data::parseTableSource(QByteArray(text), QStringLiteral("koe.dict"));
}

// The message of the error that reading a block ends in; empty when there is none.
QString readError(const QByteArray& block, const QString& table = QStringLiteral("KOE")) {
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
    ASSERT_TRUE(TTblResReader::readBlock(block, QStringLiteral("USER"), fields));
    EXPECT_EQ(fields, table.fields);
    EXPECT_EQ(fields[2].kindWord, 1441795U);
    EXPECT_EQ(fields[2].kind(), data::Kind::Memo);
    EXPECT_EQ(fields[2].qualifier(), 22);
    EXPECT_EQ(table.span(), 1029);
    ASSERT_EQ(table.keys.size(), 2U);
    EXPECT_TRUE(table.keys[0].unique);
    EXPECT_TRUE(table.keys[1].ignoreCase && !table.keys[1].unique);
    EXPECT_EQ(table.keys[1].fields, QStringList({QStringLiteral("Ok"), QStringLiteral("id")}));
}

TEST(DictionaryBlock, EveryTruncationIsDamage) {
    const QByteArray block = test::bytes(kUserBlock);
    for (qsizetype length = 0; length < block.size(); ++length)
        EXPECT_TRUE(readError(block.left(length)).contains(QStringLiteral("breaks off"))) << length;
    EXPECT_EQ(readError(block + "anything"), QString());
}

TEST(DictionaryBlock, OtherVersions) {
    QByteArray block = test::bytes(kUserBlock);
    block.replace("0002", "0001");
    // what the user sees, whichever the language
    const auto message =
        QStringLiteral("Error - Resource [ALVKANTA]  in old format. Re-compile with RESMAIN.EXE");
    EXPECT_EQ(readError(block, QStringLiteral("ALVKANTA")), message + u'|' + message);
    for (const char* version : {"0003", "0000", "abcd", "-002"}) {
        QByteArray other = test::bytes(kUserBlock);
        other.replace("0002", version);
        std::vector<data::TFieldCacheItem> fields(1);
        EXPECT_FALSE(TTblResReader::readBlock(other, QStringLiteral("KOE"), fields)) << version;
        EXPECT_TRUE(fields.empty());
    }
}

TEST(DictionaryBlock, LongNamesAreCutAndOddWordsKept) {
    const auto read = [](int nameLength) {
        QByteArray block = test::bytes("03 4b6f65 3030303200 0100");
        block.append(static_cast<char>(nameLength));
        block.append(QByteArray(nameLength, 'n'));
        // A string with a mask, and a declared length that is no copy.
        block.append(test::bytes("01000000 1200 0100 0700 1300 0a00 0900 4142434400"));
        std::vector<data::TFieldCacheItem> fields;
        EXPECT_TRUE(TTblResReader::readBlock(block, QStringLiteral("KOE"), fields));
        return fields.at(0);
    };
    EXPECT_EQ(read(31).name, QString(31, QLatin1Char('n')));
    EXPECT_EQ(read(32).name, QString(31, QLatin1Char('n')));
    const data::TFieldCacheItem item = read(255);
    EXPECT_EQ(item.name, QString(31, QLatin1Char('n')));
    EXPECT_EQ(item.mask, 1);
    EXPECT_EQ(item.offset, 7);
    EXPECT_EQ(item.storedLength, 19);
    EXPECT_EQ(item.declaredLength, 9);
    EXPECT_EQ(item.storage, data::Storage::LString);
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
        try {
            parse(source);
            ADD_FAILURE() << "accepted: " << source;
        } catch (const data::DataError& error) {
            EXPECT_EQ(error.kind(), data::ErrorKind::Syntax);
            EXPECT_EQ(error.table(), QStringLiteral("koe.dict"));
            EXPECT_TRUE(error.detail().contains(QString::fromUtf8(words)))
                << error.detail().toStdString();
        }
    }
    EXPECT_THROW(data::compileBlock(QString(), {}), data::DataError);
    EXPECT_THROW(data::compileBlock(QStringLiteral("Ł"), {}), data::DataError);
}

TEST(CompiledTables, VatClasses) {
    TTblResBase base;
    base.FFields.resize(3);
    ASSERT_TRUE(TTblResReader::ReadResource(QStringLiteral("AlvKanta"), base));
    EXPECT_TRUE(base.FFieldsResFlag);
    EXPECT_EQ(base.FFieldsResName, QStringLiteral("ALVKANTA"));
    ASSERT_EQ(base.FFields.size(), 10U);
    EXPECT_EQ(base.FFields.front().name, QStringLiteral("luokka"));
    EXPECT_EQ(base.FFields.back().name, QStringLiteral("Passiivinen"));
    const data::TFieldCacheItem& bit = base.FFields[5];
    EXPECT_EQ(bit.name, QStringLiteral("EiMatkustajamyyntia"));
    EXPECT_EQ(bit.storage, data::Storage::Bit);
    EXPECT_EQ(bit.offset, 131);
    EXPECT_EQ(bit.mask, 1);

    EXPECT_FALSE(TTblResReader::ReadResource(QStringLiteral("MT"), base));
    EXPECT_FALSE(base.FFieldsResFlag);
    EXPECT_TRUE(base.FFields.empty() && base.FFieldsResName.isEmpty());
    for (const char* name : {"", "../ALVKANTA", "X"})
        EXPECT_FALSE(TTblResReader::ReadResource(QString::fromLatin1(name), base)) << name;
}

TEST(CompiledTables, SpansAndSourcesAgree) {
    const std::map<QString, int> spans{
        {QStringLiteral("ALIRYHMA"), 207},      {QStringLiteral("ALVKANTA"), 152},
        {QStringLiteral("ASALE"), 172},         {QStringLiteral("ASIAKAS"), 1932},
        {QStringLiteral("ASRYHMA"), 237},       {QStringLiteral("INI"), 1187},
        {QStringLiteral("KAMPPANJA"), 198},     {QStringLiteral("MAARAALE"), 98},
        {QStringLiteral("MTRIVI"), 505},        {QStringLiteral("PRYHMA"), 153},
        {QStringLiteral("SARAKE"), 32872},      {QStringLiteral("TRYHMA"), 253},
        {QStringLiteral("TUOTE"), 888},         {QStringLiteral("TUOTE2"), 606},
        {QStringLiteral("TUOTETXT"), 32877},    {QStringLiteral("UUSIHINTA"), 163},
        {QStringLiteral("VAKIOLASKUTUS"), 358}, {QStringLiteral("VARSALDO"), 218},
        {QStringLiteral("VERKKOKAUPASSA"), 24}, {QStringLiteral("WEBKLIITOS"), 132},
        {QStringLiteral("WINOT"), 955},         {QStringLiteral("WINOTRI"), 565},
        {QStringLiteral("X$FIELD"), 32},        {QStringLiteral("X$FILE"), 97},
        {QStringLiteral("X$INDEX"), 10},
    };
    QStringList names;
    for (const auto& [name, span] : spans) {
        names += name;
        EXPECT_EQ(layoutOf(name.toLatin1()).recordLength(), span) << name.toStdString();
    }
    EXPECT_EQ(TTblResReader::tableNames(), names);

    const QStringList catalogueOnly{QStringLiteral("HINTATASO"), QStringLiteral("HR"),
                                    QStringLiteral("MT"), QStringLiteral("MYYMALAHINNAT"),
                                    QStringLiteral("TOIMITTAJA")};
    std::vector<data::TableSource> sources = data::allTableSources();
    EXPECT_EQ(sources.size(), spans.size() + static_cast<size_t>(catalogueOnly.size()));
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

TEST(CompiledTables, ProductFlagsShareTheirByte) {
    const data::RecordLayout layout = layoutOf("TUOTE");
    QByteArray record(layout.recordLength(), '\0');
    auto* bytes = reinterpret_cast<uchar*>(record.data());
    const auto set = [&](const char* name, const data::Value& value) {
        data::writeValue(layout.field(layout.indexOf(QString::fromLatin1(name))), bytes, value,
                         layout.tableName());
    };
    const auto get = [&](const char* name) {
        return data::readInteger(layout.field(layout.indexOf(QString::fromLatin1(name))), bytes);
    };
    set("lisukkeena", true);
    EXPECT_EQ(bytes[424], 32);
    EXPECT_EQ(get("BIT1_5"), 1);
    EXPECT_EQ(get("BIT1"), 32);
    set("NegatiivinenMK", 1);
    EXPECT_EQ(get("BIT1_7"), 1);
    EXPECT_EQ(get("bit1"), 32 - 128);
    set("BIT1_5", false);
    EXPECT_EQ(get("LISUKKEENA"), 0);
    EXPECT_EQ(get("BIT1"), -128);
    set("modbit", 8);
    EXPECT_EQ(get("DesKerroinSallittu"), 1);
    EXPECT_EQ(get("MODBIT_3"), 1);
    EXPECT_EQ(get("MODBIT_2"), 0);
    EXPECT_EQ(record.count('\0'), record.size() - 2) << "nothing else has changed";
}

TEST(CompiledTables, SettingsMemoHolds1023Characters) {
    const data::RecordLayout layout = layoutOf("INI");
    const data::TFieldCacheItem& memo = layout.field(layout.indexOf(QStringLiteral("DATA")));
    EXPECT_EQ(memo.size, 1023);
    QByteArray record(layout.recordLength(), '\0');
    auto* bytes = reinterpret_cast<uchar*>(record.data());
    const QString longest(1023, QLatin1Char('x'));
    data::writeText(memo, bytes, longest, layout.tableName());
    EXPECT_EQ(data::readText(memo, bytes), longest);
    EXPECT_THROW(data::writeText(memo, bytes, longest + QLatin1Char('x'), layout.tableName()),
                 data::DataError);
    EXPECT_EQ(data::readText(memo, bytes), longest);
}

TEST(RecordLayout, RefusesWhatNoRecordCanHold) {
    using data::Kind;
    using data::Storage;
    const auto accepted = [](const data::TFieldCacheItem& item, int recordLength) {
        try {
            data::RecordLayout(QStringLiteral("TAULU"), {item}, recordLength);
            return true;
        } catch (const data::DataError& error) {
            EXPECT_EQ(error.kind(), data::ErrorKind::Damaged);
            EXPECT_EQ(error.table(), QStringLiteral("TAULU"));
            EXPECT_TRUE(error.detail().contains(QStringLiteral("field Kentta")));
            return false;
        }
    };
    EXPECT_TRUE(accepted(test::field(Kind::Float, Storage::Float, 8, 0, 2), 10));
    EXPECT_FALSE(accepted(test::field(Kind::Float, Storage::Float, 8, 0, 3), 10));
    EXPECT_FALSE(accepted(test::field(Kind::Float, Storage::Float, 6), 0));
    EXPECT_FALSE(accepted(test::field(Kind::Float, Storage::Integer, 4), 0));
    EXPECT_FALSE(accepted(test::field(Kind::Integer, Storage::Integer, 3), 0));
    EXPECT_FALSE(accepted(test::field(Kind::Boolean, Storage::Bit, 1, 0), 0));
    EXPECT_FALSE(accepted(test::field(Kind::Boolean, Storage::Bit, 1, 6), 0));
    EXPECT_FALSE(accepted(test::field(Kind::Boolean, Storage::Bit, 1, 256), 0));
    EXPECT_FALSE(accepted(test::field(Kind::String, Storage::LString, 0), 0));
    EXPECT_FALSE(accepted(test::field(static_cast<Kind>(99), Storage::Integer, 4), 0));
    EXPECT_FALSE(accepted(test::field(Kind::RawBytes, Storage::Guid, 0), 0));
}

class ModuleFile : public ::testing::Test {
  protected:
    ~ModuleFile() override { TTblResReader::setModuleFile(QString()); }

    QString write(const QByteArray& bytes) {
        const QString name = m_folder.filePath(QStringLiteral("tables.bin"));
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(bytes), bytes.size());
        return name;
    }

    QTemporaryDir m_folder;
};

TEST_F(ModuleFile, ComesFirstAndKeepsOtherVersionsApart) {
    QByteArray own = test::bytes(kUserBlock);
    own.replace(QByteArray("\x04User", 5), QByteArray("\x08Tryhma#1", 9));
    QByteArray overriding = test::bytes(kUserBlock);
    overriding.replace(QByteArray("\x04User", 5), QByteArray("\x08"
                                                             "AlvKanta",
                                                             9));
    QByteArray old = test::bytes(kUserBlock);
    old.replace("0002", "0001").replace("User", "Oldy");
    QByteArray newer = test::bytes(kUserBlock);
    newer.replace("0002", "0003").replace("User", "Newy");
    TTblResReader::setModuleFile(write(own + old + newer + overriding));

    TTblResBase base;
    EXPECT_TRUE(TTblResReader::ReadResource(QStringLiteral("tryhma#1"), base));
    EXPECT_TRUE(TTblResReader::ReadResource(QStringLiteral("alvkanta"), base));
    EXPECT_EQ(base.FFields.size(), 3U) << "the module's table, not the built-in one";
    EXPECT_FALSE(TTblResReader::ReadResource(QStringLiteral("NEWY"), base));
    EXPECT_THROW(TTblResReader::ReadResource(QStringLiteral("OLDY"), base), data::DataError);
    EXPECT_TRUE(TTblResReader::ReadResource(QStringLiteral("TUOTE"), base));
    EXPECT_TRUE(TTblResReader::tableNames().contains(QStringLiteral("TRYHMA#1")));

    TTblResReader::setModuleFile(QString());
    EXPECT_TRUE(TTblResReader::ReadResource(QStringLiteral("alvkanta"), base));
    EXPECT_EQ(base.FFields.size(), 10U);
}

TEST_F(ModuleFile, BrokenOneLeavesTheEarlier) {
    const QByteArray block = test::bytes(kUserBlock);
    TTblResReader::setModuleFile(write(block));
    for (qsizetype cut = 1; cut < block.size(); ++cut)
        EXPECT_THROW(TTblResReader::setModuleFile(write(block + block.left(cut))), data::DataError)
            << cut;
    try {
        TTblResReader::setModuleFile(m_folder.filePath(QStringLiteral("none.bin")));
        ADD_FAILURE();
    } catch (const data::DataError& error) {
        EXPECT_EQ(error.kind(), data::ErrorKind::Io);
        EXPECT_TRUE(error.table().endsWith(QStringLiteral("none.bin")));
    }
    TTblResBase base;
    EXPECT_TRUE(TTblResReader::ReadResource(QStringLiteral("USER"), base));
}

TEST(DataErrorText, IsOneLineThatSaysWhatAndWhere) {
    const data::DataError error(data::ErrorKind::Locked, QStringLiteral("TUOTE"),
                                QStringLiteral("record  \"12\"\r\nheld\nby KASSA1"), 84);
    EXPECT_EQ(error.english(), QStringLiteral("locked by another program: TUOTE: record  \"12\" "
                                              "held by KASSA1 (code 84)"));
    EXPECT_EQ(error.english().toStdString(), error.what());
    EXPECT_EQ(error.finnish(),
              QStringLiteral("Tietue on toisen ohjelman käytössä: TUOTE: record  \"12\" held by "
                             "KASSA1 (virhekoodi 84). Yritä uudelleen, kun toinen ohjelma on "
                             "vapauttanut sen."));
    EXPECT_EQ(data::DataError(data::ErrorKind::DiskFull, QString(), QString()).finnish(),
              QStringLiteral("Levy on täynnä. Vapauta levytilaa ja yritä uudelleen."));
}

}  // namespace
