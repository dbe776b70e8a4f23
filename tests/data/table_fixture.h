#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "data/dictionary/dictionary_source.h"
#include "data/table/tb_table.h"
#include "engines/embedded/embedded_database.h"
#include "tests/support/checks.h"
#include "tests/support/fake_client/fake_company.h"

namespace test {

/// The table of the record table and filter tests, with every kind of field they need.
inline data::TableSource koeSource() {
    return data::parseTableSource(
        "table KOE\n"
        "field  1 Nro         integer   4  0  4 INTEGER\n"
        "field  2 Ryhma       smallint  2  4  2 INTEGER\n"
        "field  3 Nimi        string   12  6 13 LSTRING\n"
        "field  4 Hinta       float     8 19  8 FLOAT\n"
        "field  5 Prosentti   float     4 27  4 FLOAT\n"
        "field  6 Pvm         date      4 31  4 DATE\n"
        "field  7 Liput       smallint  1 35  1 INTEGER\n"
        "field  8 Passiivinen boolean   4 35  1 BIT 2\n"
        "field  9 Kello       time      4 36  4 TIME\n"
        "field 10 Muutettu    timestamp 8 40  8 TIMESTAMP\n"
        "field 11 Huom        string   10 48 10 STRING\n"
        "field 12 Tarkka      float     6 58  6 REAL48\n"
        "key 0 unique : Nro\n"
        "key 1 duplicates ignorecase : Nimi\n"
        "key 2 duplicates : Ryhma Hinta\n"
        "key 3 duplicates : Pvm\n",
        QStringLiteral("koe.dict"));
}

/// An engine with an empty table KOE, opened by two programs.
class Engine {
  public:
    virtual ~Engine() = default;
    virtual data::Database& database() = 0;
    virtual data::Database& otherProgram() = 0;
};

class EmbeddedTestEngine : public Engine {
  public:
    EmbeddedTestEngine() {
        std::vector<data::TableSource> tables{koeSource()};
        for (const data::TableSource& source : data::allTableSources())
            if (source.name.startsWith(QLatin1String("X$")))
                tables.push_back(source);
        engines::createEmbedded(m_folder.path(), tables);
        m_first = engines::openEmbedded(QStringLiteral("koe"), m_folder.path());
    }
    data::Database& database() override { return *m_first; }
    data::Database& otherProgram() override {
        if (!m_second)
            m_second = engines::openEmbedded(QStringLiteral("koe"), m_folder.path());
        return *m_second;
    }

    QString folder() const { return m_folder.path(); }

  private:
    QTemporaryDir m_folder;
    std::unique_ptr<data::Database> m_first;
    std::unique_ptr<data::Database> m_second;
};

/// The same store behind the shops' engine's call interface; each program is a separate session.
class ShopsTestEngine : public Engine {
  public:
    /// `quirks`: columns of the fake client's list of databases.
    explicit ShopsTestEngine(const QString& quirks = {}) {
        m_databases.add(QStringLiteral("koe"), m_store.folder(), quirks);
        m_first = open();
    }
    data::Database& database() override { return *m_first; }
    data::Database& otherProgram() override {
        if (!m_second)
            m_second = open();
        return *m_second;
    }

  private:
    static std::unique_ptr<data::Database> open() {
        engines::shops::ShopsDatabaseSettings settings;
        settings.name = QStringLiteral("koe");
        settings.clientLibrary = FakeDatabases::library();
        return std::make_unique<ShopsRecordsDatabase>(settings);
    }

    FakeDatabases m_databases;
    EmbeddedTestEngine m_store;
    std::unique_ptr<data::Database> m_first;
    std::unique_ptr<data::Database> m_second;
};

/// An older engine: no extended reads, no addresses to order equal keys by.
class PlainShopsTestEngine : public ShopsTestEngine {
  public:
    PlainShopsTestEngine() : ShopsTestEngine(QStringLiteral("linked\tplain")) {}
};

/// An open KOE.
class KoeTable : public data::TtbTable {
  public:
    explicit KoeTable(data::Database& database, const QString& index = QStringLiteral("0")) {
        setDatabase(&database);
        setTableName(QStringLiteral("koe"));
        setIndexName(index);
        open();
    }
    qint64 nro() const { return fieldByName(QStringLiteral("nro")).asInteger(); }
    QString nimi() const { return fieldByName(QStringLiteral("NIMI")).asString(); }
    data::TField& operator[](const char* name) { return fieldByName(QString::fromUtf8(name)); }

    void add(int nro, int ryhma, const QString& nimi, double hinta = 0) {
        insertRecord({nro, ryhma, nimi, hinta});
    }
    /// The numbers of the view's records, from the first.
    QList<int> walk() {
        QList<int> numbers;
        for (first(); !eof(); next())
            numbers.append(static_cast<int>(nro()));
        return numbers;
    }
};

/// The kind of error that a call throws, and its text.
template <typename Call>
data::ErrorKind errorOf(Call call, QString* detail = nullptr) {
    const data::DataError error = thrownBy(call);
    if (detail != nullptr)
        *detail = error.detail();
    return error.kind();
}

}  // namespace test
