#include <QDebug>
#include <map>
#include <random>
#include <tuple>

#include "engines/embedded/sqlite_handle.h"
#include "tests/engines/embedded/fixture.h"

using namespace data;
using test::errorOf;
using test::fieldOf;
using test::setField;

namespace {

class EmbeddedKeys : public test::EmbeddedCompany {
  protected:
    std::unique_ptr<TableFile> open(const char* table) {
        return db->openTable(QLatin1String(table));
    }

    static QByteArray emptyRecord(const TableFile& file) {
        QByteArray record(file.layout().recordLength(), '\0');
        for (const TFieldCacheItem& field : file.layout().fields())
            clearField(field, reinterpret_cast<uchar*>(record.data()));
        return record;
    }
};

QList<RecordId> idsOf(const std::vector<StoredRecord>& records) {
    QList<RecordId> ids;
    for (const StoredRecord& record : records)
        ids.append(record.id);
    return ids;
}

// What the key 0 of ASALE orders by: AsiakasNumero, Tuote, AsikasTyyppi, Maara, then insertion.
using ListKey = std::tuple<int, QByteArray, int, double, RecordId>;

}  // namespace

// Random records of a key of four kinds, against the order of std::map: searches from random values
// and walks both ways, in batches of every size.
TEST_F(EmbeddedKeys, RandomNavigationAgreesWithAMap) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto pick = [&random](int count) {
        return static_cast<int>(random() % static_cast<unsigned>(count));
    };
    const QStringList products{"",
                               "a",
                               "A",
                               "aa",
                               "b",
                               QString::fromUtf8("ä"),
                               QString::fromUtf8("€"),
                               "9",
                               "123456789012345678"};
    const QList<int> customers{-2147483647, -1, 0, 1, 255, 256, 2147483647};
    const QList<double> amounts{-1e9, -1.5, -0.0, 0, 0.1, 1, 1e300};

    const auto file = open("ASALE");
    std::map<ListKey, RecordId> expected;
    std::map<RecordId, QByteArray> records;
    const auto keyOf = [](int customer, const QString& product, int type, double amount,
                          RecordId id) {
        QByteArray bytes;
        for (const QChar c : product)  // of the products above only the euro sign has another code
            bytes.append(c == QChar(0x20AC) ? '\x80' : c.toLatin1());
        return ListKey(customer, bytes, type, amount + 0.0, id);
    };
    const auto randomValues = [&] {
        return std::tuple(customers[pick(7)], products[pick(9)], pick(3) - 1, amounts[pick(7)]);
    };
    db->inTransaction([&] {
        for (int i = 0; i < 300; ++i) {
            const auto [customer, product, type, amount] = randomValues();
            QByteArray record = emptyRecord(*file);
            setField(file->layout(), record, "AsiakasNumero", customer);
            setField(file->layout(), record, "Tuote", product);
            setField(file->layout(), record, "AsikasTyyppi", type);
            setField(file->layout(), record, "Maara", amount);
            const RecordId id = file->insert(record);
            expected.emplace(keyOf(customer, product, type, amount, id), id);
            records.emplace(id, record);
        }
    });
    ASSERT_EQ(file->recordCount(), 300);
    QList<RecordId> order;
    for (const auto& [key, id] : expected)
        order.append(id);
    QList<RecordId> reversed(order.rbegin(), order.rend());
    EXPECT_EQ(idsOf(file->fromEnd(0, Direction::Forward, 1000)), order);
    EXPECT_EQ(idsOf(file->fromEnd(0, Direction::Backward, 1000)), reversed);

    for (int i = 0; i < 300; ++i) {
        const auto [customer, product, type, amount] = randomValues();
        const KeyValues all{customer, product, type, amount};
        const KeyValues values(all.begin(), all.begin() + pick(5));
        // The records in key order, by how they compare with the leading values.
        QList<RecordId> less, equal, greater;
        for (const auto& [key, id] : expected) {
            const ListKey wanted = keyOf(customer, product, type, amount, 0);
            const int compared = [&, &key = key] {
                if (values.size() >= 1 && std::get<0>(key) != std::get<0>(wanted))
                    return std::get<0>(key) < std::get<0>(wanted) ? -1 : 1;
                if (values.size() >= 2 && std::get<1>(key) != std::get<1>(wanted))
                    return std::get<1>(key) < std::get<1>(wanted) ? -1 : 1;
                if (values.size() >= 3 && std::get<2>(key) != std::get<2>(wanted))
                    return std::get<2>(key) < std::get<2>(wanted) ? -1 : 1;
                if (values.size() >= 4 && std::get<3>(key) != std::get<3>(wanted))
                    return std::get<3>(key) < std::get<3>(wanted) ? -1 : 1;
                return 0;
            }();
            (compared < 0 ? less : compared > 0 ? greater : equal).append(id);
            const int told = file->compare(0, records[id], values);
            ASSERT_EQ((told > 0) - (told < 0), compared);
        }
        const auto sought = [&](SeekOp op) { return idsOf(file->seek(0, op, values, 1000)); };
        const auto backwards = [](QList<RecordId> ids) {
            std::reverse(ids.begin(), ids.end());
            return ids;
        };
        ASSERT_EQ(sought(SeekOp::Equal), equal);
        ASSERT_EQ(sought(SeekOp::Greater), greater);
        ASSERT_EQ(sought(SeekOp::GreaterOrEqual), equal + greater);
        ASSERT_EQ(sought(SeekOp::Less), backwards(less));
        ASSERT_EQ(sought(SeekOp::LessOrEqual), backwards(less + equal));

        const int place = pick(300);
        const int count = 1 + pick(20);
        const StoredRecord from{order[place], records[order[place]]};
        ASSERT_EQ(idsOf(file->next(0, from, Direction::Forward, count)),
                  order.mid(place + 1, count));
        ASSERT_EQ(idsOf(file->next(0, from, Direction::Backward, count)),
                  reversed.mid(300 - place, count));
    }
}

TEST_F(EmbeddedKeys, KeysThatIgnoreCasePutAoAfterZ) {
    const auto file = open("TOIMITTAJA");
    int number = 0;
    for (const char* name : {"zorro", "Öljy", "Aatu", "äiti", "Åke", "aasi", "ZETA", "ÄITI"}) {
        QByteArray record = emptyRecord(*file);
        setField(file->layout(), record, "Tunnus", QString::number(number++));
        setField(file->layout(), record, "Nimi", QString::fromUtf8(name));
        file->insert(record);
    }
    QStringList names;
    for (const StoredRecord& record : file->fromEnd(1, Direction::Forward, 100))
        names.append(fieldOf(file->layout(), record.bytes, "Nimi").toString());
    EXPECT_EQ(names.join(' '), QString::fromUtf8("aasi Aatu ZETA zorro Åke äiti ÄITI Öljy"));
    EXPECT_EQ(file->seek(1, SeekOp::Equal, {QString::fromUtf8("äitI")}, 10).size(), 2u);
    EXPECT_EQ(rows(QString::fromUtf8("select tunnus from toimittaja where nimi = 'ÄITI'")),
              QStringList{"7"});
}

// The stored images, byte by byte.
TEST_F(EmbeddedKeys, ImagesAsDocumented) {
    run(QString::fromUtf8("insert into tuote (numero, nimi, ryhma) values ('Ä7', 'åB z', -1)"));
    run("insert into uusihinta (avain, tuote, pvm) values (258, 'x', '2024-09-01'), (1, 'x', '')");
    run("insert into asale (maara, asikastyyppi) values (1, -1), (-1, 1)");
    db.reset();
    const engines::embedded::SqliteHandle handle(file(),
                                                 engines::embedded::SqliteHandle::Mode::ReadWrite);
    const auto images = [&handle](const QByteArray& sql) {
        engines::embedded::Statement statement(handle.get(), sql);
        QByteArrayList found;
        while (statement.step())
            found.append(statement.bytes(0).toHex());
        return found;
    };
    const QByteArray zero = "00";
    EXPECT_EQ(images("SELECT k2 FROM rec_TUOTE"), QByteArrayList{"7fff"
                                                                 "c437" +
                                                                 zero.repeated(16)});
    const QByteArray folded = images("SELECT k5 FROM rec_TUOTE").at(0);
    EXPECT_EQ(folded.size(), 80);
    EXPECT_TRUE(folded.endsWith(zero.repeated(36)));
    EXPECT_EQ(images("SELECT k0 FROM rec_UUSIHINTA ORDER BY id"),
              (QByteArrayList{"80000102", "80000001"}));
    // 2024-09-01 is the Julian day 2460555; 739131 is B473B.
    EXPECT_EQ(images("SELECT k1 FROM rec_UUSIHINTA ORDER BY id"),
              (QByteArrayList{"78" + zero.repeated(17) + "000b473b",
                              "78" + zero.repeated(17) + "00000000"}));
    EXPECT_EQ(images("SELECT k0 FROM rec_ASALE ORDER BY id"),
              (QByteArrayList{"80000000" + zero.repeated(18) +
                                  "7f"
                                  "bff0000000000000",
                              "80000000" + zero.repeated(18) +
                                  "81"
                                  "400fffffffffffff"}));
}

TEST_F(EmbeddedKeys, NextFindsThePlaceOfARecordThatIsGone) {
    const auto file = open("TRYHMA");
    std::vector<StoredRecord> stored;
    for (int i = 0; i < 5; ++i) {
        QByteArray record = emptyRecord(*file);
        setField(file->layout(), record, "Nro", i);
        const RecordId id = file->insert(record);
        stored.push_back({id, record});
    }
    file->remove(stored[2].id);
    EXPECT_EQ(file->next(0, stored[2], Direction::Forward, 1).at(0).id, stored[3].id);
    EXPECT_EQ(file->next(0, stored[2], Direction::Backward, 1).at(0).id, stored[1].id);
    EXPECT_FALSE(file->get(stored[2].id).has_value());
    EXPECT_EQ(errorOf([&] { file->update(stored[2].id, stored[2].bytes); }).kind(),
              ErrorKind::Gone);
    EXPECT_EQ(errorOf([&] { file->remove(stored[2].id); }).kind(), ErrorKind::Gone);
}

// An id names one record for good: a bookmark never leads to another.
TEST_F(EmbeddedKeys, IdsAreNotUsedAgain) {
    const auto file = open("TRYHMA");
    QByteArray record = emptyRecord(*file);
    const RecordId first = file->insert(record);
    file->remove(first);
    const RecordId second = file->insert(record);
    EXPECT_NE(second, first);
    run("delete from tryhma");
    db = engines::openEmbedded("KOE", folder());
    const RecordId third = db->openTable("tryhma")->insert(record);
    EXPECT_TRUE(third != first && third != second);
}

TEST_F(EmbeddedKeys, UniqueKeysAndNumbersGivenOut) {
    const auto file = open("UUSIHINTA");  // Avain numbers itself
    const auto insert = [&](int number) {
        QByteArray record = emptyRecord(*file);
        setField(file->layout(), record, "Avain", number);
        file->insert(record);
        return fieldOf(file->layout(), record, "Avain").toInt();
    };
    EXPECT_EQ(insert(0), 1);
    EXPECT_EQ(insert(7), 7);
    EXPECT_EQ(insert(0), 8);
    const DataError error = errorOf([&] { insert(7); });
    EXPECT_EQ(error.kind(), ErrorKind::DuplicateKey);
    EXPECT_EQ(error.table(), "UUSIHINTA");
    EXPECT_TRUE(error.detail().contains("Avain \"7\"")) << error.english().toStdString();
    run("insert into uusihinta (tuote) values ('x')");
    EXPECT_EQ(rows("select avain, tuote from uusihinta where tuote = 'x'"), QStringList{"9|x"});
    EXPECT_EQ(file->recordCount(), 4);

    // Changing a key moves the record; changing it onto another's value changes nothing.
    StoredRecord seven = file->seek(0, SeekOp::Equal, {7}, 1).at(0);
    setField(file->layout(), seven.bytes, "Avain", 8);
    EXPECT_EQ(errorOf([&] { file->update(seven.id, seven.bytes); }).kind(),
              ErrorKind::DuplicateKey);
    setField(file->layout(), seven.bytes, "Avain", 70);
    file->update(seven.id, seven.bytes);
    EXPECT_TRUE(file->seek(0, SeekOp::Equal, {7}, 1).empty());
    EXPECT_EQ(file->fromEnd(0, Direction::Backward, 1).at(0).id, seven.id);
    EXPECT_EQ(errorOf([&] { file->seek(0, SeekOp::Equal, {"abc"}, 1); }).kind(),
              ErrorKind::BadValue);
    EXPECT_EQ(engines::checkEmbedded(folder()), QStringList());
}

// Every layout that the catalogue describes is the layout of its source.
TEST_F(EmbeddedKeys, CatalogueGivesTheSourcesLayouts) {
    for (const TableSource& source : allTableSources()) {
        const auto file = db->openTable(source.name.toLower());
        ASSERT_EQ(file->layout().fieldCount(), static_cast<int>(source.fields.size()))
            << source.name.toStdString();
        EXPECT_EQ(file->layout().recordLength(), source.span());
        for (size_t i = 0; i < source.fields.size(); ++i) {
            const TFieldCacheItem& given = source.fields[i];
            const TFieldCacheItem& listed = file->layout().field(static_cast<int>(i));
            const auto told = [](const TFieldCacheItem& f) {
                return std::tuple(f.number, f.name, f.kindWord, f.size, f.offset, f.storedLength,
                                  f.storage, f.storage == Storage::Bit ? f.mask : 0);
            };
            EXPECT_TRUE(told(listed) == told(given))
                << source.name.toStdString() << "." << given.name.toStdString();
        }
        ASSERT_EQ(file->keys().size(), source.keys.size());
        for (size_t k = 0; k < source.keys.size(); ++k) {
            QStringList fields;
            for (const KeySegment& segment : file->keys()[k].segments) {
                fields.append(file->layout().field(segment.fieldIndex).name);
                EXPECT_EQ(segment.ignoreCase, source.keys[k].ignoreCase);
            }
            EXPECT_EQ(file->keys()[k].unique, source.keys[k].unique);
            EXPECT_EQ(fields.join(' ').toLower(), source.keys[k].fields.join(' ').toLower());
        }
    }
    EXPECT_EQ(errorOf([&] { db->openTable("PUUTTUU"); }).kind(), ErrorKind::NoSuchTable);
    EXPECT_EQ(open("HINTATASO")->recordCount(), 9);
    EXPECT_EQ(rows("select nro, nimi from hintataso where nro in (1, 9) order by nro"),
              (QStringList{"1|Hinta 1", "9|Hinta 9"}));
}
