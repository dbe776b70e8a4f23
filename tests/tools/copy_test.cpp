// zavdb copy: every byte of every table arrives, also after kills.

#include <csignal>
#include <random>

#include "engines/embedded/company_file.h"
#include "engines/embedded/connection.h"
#include "engines/embedded/embedded_database.h"
#include "engines/embedded/table_file.h"
#include "tests/support/fake_client/fake_company.h"
#include "tests/tools/zavdb_program.h"
#include "tools/zavdb/company_copy.h"

namespace {

using data::Direction;
using data::TableFile;

class Copy : public test::ZavdbProgram {
  protected:
    bool exists(const char* name) const { return QFile::exists(path(name)); }

    /// Starts a copy and kills it when its unfinished database has reached a size.
    /// @return whether it was still running.
    bool killCopyAt(qint64 bytes) {
        QProcess process;
        prepare(process);
        process.start(program(), {"copy", "S", "T", "t"});
        EXPECT_TRUE(process.waitForStarted());
        const QString unfinished = path("t/.zavdb-copy/YRITYS.ZDB");
        while (process.state() == QProcess::Running &&
               QFileInfo(unfinished).size() + QFileInfo(unfinished + "-wal").size() < bytes)
            process.waitForFinished(1);
        const bool going = process.state() == QProcess::Running;
        process.kill();
        process.waitForFinished();
        return going;
    }
};

// Keys with every flag, random bytes, unassigned numbers, bytes outside any field.
data::TableSource oddTable() {
    data::TableSource table = data::parseTableSource(
        "table Outo\n"
        "field 1 Avain    string       6  0  7 LSTRING\n"
        "field 2 Luku     smallint     2  7  2 INTEGER\n"
        "field 3 Numero   integer:29 4  9  4 AUTOINCREMENT\n"
        "field 4 Paiva    date         4 13  4 DATE\n"
        "field 5 Tarkka   float        6 17  6 REAL48\n"
        "field 6 Lippu    boolean      4 40  1 BIT 16\n"
        "field 7 Teksti   memo:22     59 41 60 NOTE\n",
        QStringLiteral("odd.dict"));
    table.keyDefs = {{0, false, {{0, true, false}, {1, false, true}}},
                     {1, false, {{2, false, false}}},
                     {2, false, {{3, false, true}}}};
    return table;
}

std::vector<QByteArray> walk(TableFile& table, int key) {
    std::vector<QByteArray> records;
    table.visit(key, std::nullopt, Direction::Forward, 1'000'000,
                [&](data::RecordId, const QByteArray& bytes) {
                    records.emplace_back(bytes.constData(), bytes.size());
                    return true;
                });
    return records;
}

/// A table whose dictionary is shorter than its records, and whose key 0 was dropped.
class CutTable : public engines::embedded::EmbeddedTableFile {
  public:
    CutTable(const std::shared_ptr<engines::embedded::Connection>& connection, const QString& name)
        : EmbeddedTableFile(connection, connection->table(name)),
          m_keys(EmbeddedTableFile::keys()) {
        const data::RecordLayout& whole = EmbeddedTableFile::layout();
        std::vector<data::TFieldCacheItem> fields = whole.fields();
        fields.pop_back();
        m_layout = data::RecordLayout(whole.tableName(), fields, whole.recordLength());
        m_keys[0].segments.clear();
    }
    const data::RecordLayout& layout() const override { return m_layout; }
    const std::vector<data::KeyDef>& keys() const override { return m_keys; }

  private:
    data::RecordLayout m_layout;
    std::vector<data::KeyDef> m_keys;
};

/// A company behind the shops' engine's call interface; MYYMALAHINNAT as above, INI without a file.
class ShopSource : public test::ShopsRecordsDatabase {
  public:
    ShopSource(const engines::shops::ShopsDatabaseSettings& settings, const QString& store)
        : ShopsRecordsDatabase(settings),
          m_store(std::make_shared<engines::embedded::Connection>(
              engines::embedded::companyFile(store))) {}
    std::unique_ptr<TableFile> openTable(const QString& table) override {
        if (table == u"INI")
            throw data::DataError(data::ErrorKind::NoSuchTable, table, QString());
        if (table == u"MYYMALAHINNAT")
            return std::make_unique<CutTable>(m_store, table);
        return ShopsRecordsDatabase::openTable(table);
    }

  private:
    std::shared_ptr<engines::embedded::Connection> m_store;
};

TEST_F(Copy, FromTheShopsEngineEveryByteOfEveryTable) {
    std::vector<data::TableSource> tables = data::allTableSources();
    tables.push_back(oddTable());
    engines::createEmbedded(path("d"), tables);
    const auto from = engines::openEmbedded(QStringLiteral("D"), path("d"));
    std::mt19937 random(20240901);
    const auto odd = from->openTable(QStringLiteral("OUTO"));
    from->inTransaction([&] {
        for (int i = 0; i < 3000; ++i) {
            QByteArray record(odd->layout().recordLength(), '\0');
            for (char& byte : record)
                byte = static_cast<char>(random());
            record[0] = static_cast<char>(random() % 3);  // many equal keys
            QByteArray numbered = record;
            const data::RecordId id = odd->insert(numbered);
            if (i % 7 == 0) {
                record.replace(9, 4, QByteArray(4, '\0'));  // a number of 0
                odd->update(id, record);
            }
            if (i % 11 == 0)
                odd->remove(id);
        }
        // price levels renamed: the copy has these and not those of a new company
        for (const char* sql :
             {"update HINTATASO set Nimi = 'Taso' where Nro > 3",
              "insert into MYYMALAHINNAT (Myymala, Tuote) values (1, 'A'), (2, 'B')"})
            from->prepare(QLatin1String(sql))->execute();
    });
    test::FakeDatabases databases;
    databases.add(QStringLiteral("KAUPPA"), path("d"));
    engines::shops::ShopsDatabaseSettings settings;
    settings.name = QStringLiteral("KAUPPA");
    settings.folder = path("shop");
    settings.clientLibrary = test::FakeDatabases::library();
    QDir().mkpath(path("shop/MAARITYS"));
    for (const char* name :
         {"shop/MAARITYS/AlvMuutosLomake.INI", "shop/FORMS.INI", "shop/loki.dat"})
        file(name, QByteArray("[x]\r\na=") + name);
    ShopSource source(settings, path("d"));
    const tools::CopyResult result =
        tools::copyCompany(source, settings.folder, QStringLiteral("Kopio"), path("deep/k"));
    EXPECT_EQ(result.tables, 27);  // of 31: without INI and the three of the catalogue
    EXPECT_EQ(result.differences, QStringList());
    EXPECT_FALSE(result.findings.isEmpty());  // random bytes are not dates
    EXPECT_TRUE(result.notes.join(u'|').contains("INI: listed in the catalogue without"));
    EXPECT_TRUE(result.notes.join(u'|').contains("catalogue's rows are the copy's own"));

    const auto to = engines::openEmbedded(QStringLiteral("Kopio"), path("deep/k"));
    EXPECT_EQ(to->tableNames().size(), 30);
    for (const QString& name : to->tableNames()) {
        if (name.startsWith(u"X$"))
            continue;
        const auto original = from->openTable(name);
        const auto copy = to->openTable(name);
        const bool isCut = name == u"MYYMALAHINNAT";
        EXPECT_TRUE(isCut || copy->layout().fields() == original->layout().fields())
            << name.toStdString();
        ASSERT_EQ(copy->keys().size(), original->keys().size()) << name.toStdString();
        for (int key = isCut ? 1 : 0; key < static_cast<int>(copy->keys().size()); ++key)
            EXPECT_TRUE(walk(*copy, key) == walk(*original, key))
                << name.toStdString() << " key " << key;
    }
    EXPECT_EQ(walk(*to->openTable(QStringLiteral("Outo")), 0).size(), 3000U - 273U);
    const auto prices = to->openTable(QStringLiteral("MYYMALAHINNAT"));
    EXPECT_EQ(prices->recordCount(), 2);
    EXPECT_EQ(prices->layout().fields().back().name, QStringLiteral("Loppu"));
    EXPECT_FALSE(prices->keys()[0].unique);  // stands for the dropped one
    for (const char* name : {"MAARITYS/AlvMuutosLomake.INI", "FORMS.INI"})
        EXPECT_EQ(test::fileBytes(path("deep/k/") + name), QByteArray("[x]\r\na=shop/") + name);
    EXPECT_FALSE(exists("deep/k/loki.dat"));  // the source's own history
    EXPECT_FALSE(exists("deep/k/.zavdb-copy"));
}

TEST_F(Copy, KilledCopiesResume) {
    done({"demo", "S", "s", "--products", "1500"});
    int kills = 0;
    for (qint64 size = 200'000; size < 100'000'000 && killCopyAt(size); size += 700'000) {
        ++kills;
        EXPECT_FALSE(exists("t/YRITYS.ZDB"));
        EXPECT_EQ(done({"list"}).count('\n'), 1);
        if (kills == 2)  // the source changed where it was copied already
            done({"sql", "S", "update ALVKANTA set Selite = 'uusi' where luokka = 1"});
    }
    EXPECT_GE(kills, 3);
    if (!exists("t/YRITYS.ZDB"))
        done({"copy", "S", "T", "t"});
    EXPECT_EQ(tableNames("T"), tableNames("S"));
    for (const QString& name : tableNames("S"))
        EXPECT_EQ(done({"export", "T", name}), done({"export", "S", name})) << name.toStdString();
    done({"check", "T"});
}

}  // namespace
