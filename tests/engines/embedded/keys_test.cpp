#include <map>
#include <random>
#include <tuple>

#include "data/windows1252.h"
#include "engines/sqlite/sqlite_handle.h"
#include "tests/engines/embedded/fixture.h"

using namespace data;
using test::fieldOf;
using test::setField;
using test::thrownBy;

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

// Key 0 of ASALE: AsiakasNumero, Tuote (its bytes), AsikasTyyppi, Maara.
using ListKey = std::tuple<int, QByteArray, int, double>;

// Compares the first `count` parts.
template <size_t I = 0>
int compareLeading(const ListKey& a, const ListKey& b, size_t count) {
    if constexpr (I < 4) {
        if (I < count)
            return std::get<I>(a) < std::get<I>(b)   ? -1
                   : std::get<I>(b) < std::get<I>(a) ? 1
                                                     : compareLeading<I + 1>(a, b, count);
    }
    return 0;
}

}  // namespace

// Random records under a key of four kinds against a sorted map: random searches and walks in both
// directions, in batches of every size.
TEST_F(EmbeddedKeys, RandomNavigationAgreesWithAMap) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto pick = [&random](int count) {
        return static_cast<int>(random() % static_cast<unsigned>(count));
    };
    const QStringList products = QString("|a|A|aa|b|ä|€|9|123456789012345678").split(u'|');
    const QList<int> customers{-2147483647, -1, 0, 1, 255, 256, 2147483647};
    const QList<double> amounts{-1e9, -1.5, -0.0, 0, 0.1, 1, 1e300};
    const auto randomValues = [&]() -> KeyValues {
        return {customers[pick(7)], products[pick(9)], pick(3) - 1, amounts[pick(7)]};
    };
    const auto keyOf = [](const KeyValues& values) {
        QByteArray bytes;
        EXPECT_TRUE(toWindows1252(values[1].toString(), bytes));
        return ListKey(values[0].toInt(), bytes, values[2].toInt(), values[3].toDouble() + 0.0);
    };

    const auto file = open("ASALE");
    std::map<std::pair<ListKey, RecordId>, StoredRecord> expected;
    db->inTransaction([&] {
        for (int i = 0; i < 300; ++i) {
            const KeyValues values = randomValues();
            QByteArray record = emptyRecord(*file);
            size_t part = 0;
            for (const char* name : {"AsiakasNumero", "Tuote", "AsikasTyyppi", "Maara"})
                setField(file->layout(), record, name, values[part++]);
            const RecordId id = file->insert(record);
            expected[{keyOf(values), id}] = {id, record};
        }
    });
    ASSERT_EQ(file->recordCount(), 300);
    std::vector<StoredRecord> order;
    for (const auto& [key, record] : expected)
        order.push_back(record);
    const QList<RecordId> ids = idsOf(order);
    const QList<RecordId> reversed(ids.rbegin(), ids.rend());
    EXPECT_EQ(idsOf(file->fromEnd(0, Direction::Forward, 1000)), ids);
    EXPECT_EQ(idsOf(file->fromEnd(0, Direction::Backward, 1000)), reversed);

    for (int i = 0; i < 300; ++i) {
        const KeyValues all = randomValues();
        const KeyValues values(all.begin(), all.begin() + pick(5));
        int less = 0;
        int equal = 0;
        for (const auto& [key, record] : expected) {
            const int compared = compareLeading(key.first, keyOf(all), values.size());
            less += compared < 0;
            equal += compared == 0;
            const int told = file->compare(0, record.bytes, values);
            ASSERT_EQ((told > 0) - (told < 0), compared);
        }
        const auto sought = [&](SeekOp op) { return idsOf(file->seek(0, op, values, 1000)); };
        ASSERT_EQ(sought(SeekOp::Equal), ids.mid(less, equal));
        ASSERT_EQ(sought(SeekOp::Greater), ids.mid(less + equal));
        ASSERT_EQ(sought(SeekOp::GreaterOrEqual), ids.mid(less));
        ASSERT_EQ(sought(SeekOp::Less), reversed.mid(300 - less));
        ASSERT_EQ(sought(SeekOp::LessOrEqual), reversed.mid(300 - less - equal));

        const int place = pick(300);
        const int count = 1 + pick(20);
        const StoredRecord& from = order[static_cast<size_t>(place)];
        ASSERT_EQ(idsOf(file->next(0, from, Direction::Forward, count)), ids.mid(place + 1, count));
        ASSERT_EQ(idsOf(file->next(0, from, Direction::Backward, count)),
                  reversed.mid(300 - place, count));
    }
}

TEST_F(EmbeddedKeys, KeysThatIgnoreCasePutAoAfterZ) {
    run("insert into toimittaja (tunnus, nimi) values (0,'zorro'), (1,'Öljy'), (2,'Aatu'), "
        "(3,'äiti'), (4,'Åke'), (5,'aasi'), (6,'ZETA'), (7,'ÄITI')");
    const auto file = open("TOIMITTAJA");
    EXPECT_EQ(idsOf(file->fromEnd(1, Direction::Forward, 100)),
              (QList<RecordId>{6, 3, 7, 1, 5, 4, 8, 2}));
    EXPECT_EQ(file->seek(1, SeekOp::Equal, {"äitI"}, 10).size(), 2u);
    EXPECT_EQ(rows("select tunnus from toimittaja where nimi = 'ÄITI'"), QStringList{"7"});
}

// The stored images, byte by byte.
TEST_F(EmbeddedKeys, ImagesAsDocumented) {
    run(QString::fromUtf8("insert into tuote (numero, nimi, ryhma) values ('Ä7', 'åB z', -1)"));
    run("insert into uusihinta (avain, tuote, pvm) values (258, 'x', '2024-09-01'), (1, 'x', '')");
    run("insert into asale (maara, asikastyyppi) values (1, -1), (-1, 1)");
    db.reset();
    const engines::sqlite::SqliteHandle handle(file(),
                                               engines::sqlite::SqliteHandle::Mode::ReadWrite);
    const auto images = [&handle](const QByteArray& sql) {
        engines::sqlite::Statement statement(handle.get(), sql);
        QByteArrayList found;
        while (statement.step())
            found.append(statement.bytes(0).toHex());
        return found;
    };
    const auto zeros = [](int count) { return QByteArray(2 * count, '0'); };
    const QByteArray folded = images("SELECT k5 FROM rec_TUOTE").at(0);
    EXPECT_EQ(folded.size(), 80);
    EXPECT_TRUE(folded.endsWith(zeros(18)));
    // 2024-09-01 is the Julian day 2460555; 739131 is B473B.
    const std::pair<const char*, QByteArray> cases[] = {
        {"SELECT k2 FROM rec_TUOTE", "7fffc437" + zeros(16)},
        {"SELECT k0 FROM rec_UUSIHINTA WHERE id = 1", "80000102"},
        {"SELECT k1 FROM rec_UUSIHINTA WHERE id = 1", "78" + zeros(17) + "000b473b"},
        {"SELECT k1 FROM rec_UUSIHINTA WHERE id = 2", "78" + zeros(17) + "00000000"},
        {"SELECT k0 FROM rec_ASALE WHERE id = 1", "80000000" + zeros(18) + "7fbff0000000000000"},
        {"SELECT k0 FROM rec_ASALE WHERE id = 2", "80000000" + zeros(18) + "81400fffffffffffff"},
    };
    for (const auto& [sql, image] : cases)
        EXPECT_EQ(images(sql), QByteArrayList{image}) << sql;
}

// Ids are not reused: a bookmark never leads to another record.
TEST_F(EmbeddedKeys, NextContinuesAfterADeletedRecordAndIdsAreNotReused) {
    run("insert into tryhma (nro) values (0), (1), (2), (3), (4)");
    auto file = open("TRYHMA");
    const std::vector<StoredRecord> stored = file->fromEnd(0, Direction::Forward, 5);
    file->remove(stored[2].id);
    EXPECT_EQ(file->next(0, stored[2], Direction::Forward, 1).at(0).id, stored[3].id);
    EXPECT_EQ(file->next(0, stored[2], Direction::Backward, 1).at(0).id, stored[1].id);
    EXPECT_FALSE(file->get(stored[2].id).has_value());
    const DataError gone = thrownBy([&] { file->update(stored[2].id, stored[2].bytes); });
    EXPECT_EQ(gone.kind(), ErrorKind::Gone);
    EXPECT_EQ(gone.finnish(),
              QString("Tietue on sillä välin poistettu: TRYHMA: toinen ohjelma poisti sen. Hae "
                      "tiedot uudelleen."));
    EXPECT_EQ(thrownBy([&] { file->remove(stored[2].id); }).kind(), ErrorKind::Gone);
    run("delete from tryhma");
    file.reset();
    db = engines::openEmbedded("KOE", folder());
    QByteArray record = stored[0].bytes;
    EXPECT_GT(db->openTable("tryhma")->insert(record), stored[4].id);
}

TEST_F(EmbeddedKeys, UniqueKeysAndNumbersGivenOut) {
    const auto file = open("UUSIHINTA");  // Avain is an auto-increment field
    const auto insert = [&](int number) {
        QByteArray record = emptyRecord(*file);
        setField(file->layout(), record, "Avain", number);
        file->insert(record);
        return fieldOf(file->layout(), record, "Avain").toInt();
    };
    EXPECT_EQ(insert(0), 1);
    EXPECT_EQ(insert(7), 7);
    EXPECT_EQ(insert(0), 8);
    const DataError error = thrownBy([&] { insert(7); });
    EXPECT_EQ(error.kind(), ErrorKind::DuplicateKey);
    EXPECT_EQ(error.table(), "UUSIHINTA");
    EXPECT_TRUE(error.detail().contains("Avain \"7\"")) << error.english().toStdString();
    EXPECT_TRUE(error.finnish().contains("UUSIHINTA: avaimessa 0 on jo Avain \"7\" ("))
        << error.finnish().toStdString();
    run("insert into uusihinta (tuote) values ('x')");
    EXPECT_EQ(rows("select avain, tuote from uusihinta where tuote = 'x'"), QStringList{"9|x"});
    EXPECT_EQ(file->recordCount(), 4);

    // Changing a key moves the record; a duplicate changes nothing.
    EXPECT_EQ(thrownBy([&] { run("update uusihinta set avain = 8 where avain = 7"); }).kind(),
              ErrorKind::DuplicateKey);
    EXPECT_EQ(run("update uusihinta set avain = 70 where avain = 7"), 1);
    EXPECT_TRUE(file->seek(0, SeekOp::Equal, {7}, 1).empty());
    EXPECT_EQ(rows("select max(avain) from uusihinta"), QStringList{"70"});
    EXPECT_EQ(thrownBy([&] { file->seek(0, SeekOp::Equal, {"abc"}, 1); }).kind(),
              ErrorKind::BadValue);
    EXPECT_EQ(engines::checkEmbedded(folder()), QStringList());
}

// Every layout from the catalogue equals that of its source.
TEST_F(EmbeddedKeys, CatalogueGivesTheSourcesLayouts) {
    for (const TableSource& source : allTableSources()) {
        const auto file = db->openTable(source.name.toLower());
        ASSERT_EQ(file->layout().fieldCount(), static_cast<int>(source.fields.size()))
            << source.name.toStdString();
        EXPECT_EQ(file->layout().recordLength(), source.span());
        for (size_t i = 0; i < source.fields.size(); ++i) {
            TFieldCacheItem given = source.fields[i];
            TFieldCacheItem listed = file->layout().field(static_cast<int>(i));
            for (TFieldCacheItem* item : {&given, &listed}) {  // not stored in the catalogue
                item->declaredLength = 0;
                item->mask = item->storage == Storage::Bit ? item->mask : 0;
            }
            EXPECT_EQ(listed, given)
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
    const DataError missing = thrownBy([&] { db->openTable("PUUTTUU"); });
    EXPECT_EQ(missing.kind(), ErrorKind::NoSuchTable);
    EXPECT_EQ(missing.finnish(),
              QString("Taulua ei ole tietokannassa: PUUTTUU: sitä ei ole tietokannan hakemistossa "
                      "eikä sanakirjassa. Tarkista, että yrityksen tietokanta on ajan tasalla."));
    EXPECT_EQ(rows("select nro, nimi from hintataso where nro in (1, 9) order by nro"),
              (QStringList{"1|Hinta 1", "9|Hinta 9"}));
}
