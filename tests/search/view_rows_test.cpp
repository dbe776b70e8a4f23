#include "search/view_rows.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>
#include <random>

#include "data/record/record_codec.h"
#include "data/table/tb_table.h"
#include "search/grid_row.h"
#include "search/table_model.h"
#include "tests/support/shop_company.h"

using namespace search;
using data::Direction;
using data::StoredRecord;
using test::str;

namespace {

constexpr int kProducts = 6000;  // some steps of KeyPlaces, and many walks' slices

class ViewRowsTest : public ::testing::Test {
  protected:
    ViewRowsTest() {
        m_file = m_company.database().openTable(str("TUOTE"));
        const data::RecordLayout& layout = m_file->layout();
        m_company.database().inTransaction([&] {
            QByteArray empty(layout.recordLength(), '\0');
            for (const data::TFieldCacheItem& field : layout.fields())
                data::clearField(field, reinterpret_cast<uchar*>(empty.data()));
            for (int i = 0; i < kProducts; ++i) {
                QByteArray record = empty;
                auto* raw = reinterpret_cast<uchar*>(record.data());
                // Numbers and names not in insertion order; many equal names.
                const QString number = str("%1").arg((i * 7919) % kProducts, 5, 10, QChar(u'0'));
                data::writeText(field("NUMERO"), raw, number, str("TUOTE"));
                data::writeText(field("NIMI"), raw, str("N%1").arg(i % 37), str("TUOTE"));
                data::writeInteger(field("RYHMA"), raw, i % 10, str("TUOTE"));
                m_file->insert(record);
            }
        });
    }

    const data::TFieldCacheItem& field(const char* name) const {
        return m_file->layout().field(m_file->layout().indexOf(QLatin1String(name)));
    }

    // The rows found by a plain walk of the key.
    std::vector<data::RecordId> expected(int key, const std::optional<KeyRange>& range,
                                         const RowTest& accept) const {
        std::vector<data::RecordId> ids;
        for (const StoredRecord& record : m_file->fromEnd(key, Direction::Forward, kProducts)) {
            if (range && (m_file->compare(key, record.bytes, range->low) < 0 ||
                          m_file->compare(key, record.bytes, range->high) > 0))
                continue;
            if (!accept || accept(record.id, record.bytes))
                ids.push_back(record.id);
        }
        return ids;
    }

    RowTest groupBelow(int bound) const {
        return [this, bound](data::RecordId, const QByteArray& bytes) {
            return data::readInteger(field("RYHMA"),
                                     reinterpret_cast<const uchar*>(bytes.constData())) < bound;
        };
    }

    test::ShopCompany m_company;
    std::unique_ptr<data::TableFile> m_file;
};

// The engine's counts along a key equal those of a record-by-record walk.
TEST_F(ViewRowsTest, SkippingAndCountingAgreeWithWalking) {
    std::mt19937 random(4);
    for (const int key : {0, 1, 5}) {
        const std::vector<StoredRecord> all = m_file->fromEnd(key, Direction::Forward, kProducts);
        ASSERT_EQ(all.size(), kProducts);
        const auto at = [&](qint64 place) { return all[static_cast<size_t>(place)]; };
        for (int i = 0; i < 40; ++i) {
            const qint64 a = random() % kProducts;
            const qint64 b = random() % kProducts;
            EXPECT_EQ(m_file->countBetween(key, at(a), at(b)), std::max<qint64>(b - a, 0));
            EXPECT_EQ(m_file->countBetween(key, std::nullopt, at(b)), b);
            const Direction way = b > a ? Direction::Forward : Direction::Backward;
            if (a != b) {
                EXPECT_EQ(m_file->skip(key, at(a), way, std::llabs(b - a))->id, at(b).id);
            }
            EXPECT_EQ(m_file->skip(key, std::nullopt, Direction::Forward, a + 1)->id, at(a).id);
            EXPECT_EQ(m_file->skip(key, std::nullopt, Direction::Backward, kProducts - a)->id,
                      at(a).id);
            EXPECT_FALSE(m_file->skip(key, at(a), Direction::Forward, kProducts - a).has_value());
            std::vector<data::RecordId> seen;
            const auto last = m_file->visit(
                key, at(a), Direction::Backward, 5,
                [&](data::RecordId id, const QByteArray& bytes) {
                    EXPECT_EQ(bytes, at(a - 1 - static_cast<qint64>(seen.size())).bytes);
                    seen.push_back(id);
                    return true;
                });
            EXPECT_EQ(seen.size(), std::min<qint64>(a, 5));
            EXPECT_EQ(last.has_value(), a > 0);
            if (last) {
                EXPECT_EQ(last->id, seen.back());
            }
        }
    }
}

// Wherever a walk begins and however it continues, it ends with the same rows, and known rows are
// right relative to the first known one on the way.
TEST_F(ViewRowsTest, EveryWalkEndsWithTheSameRows) {
    const KeyRange names{{str("N2")}, {str("N2ú")}};
    const KeyRange nothing{{str("X")}, {str("Y")}};
    const struct {
        int key;
        std::optional<KeyRange> range;
        RowTest accept;
    } views[] = {
        {0, std::nullopt, {}},
        {5, std::nullopt, groupBelow(3)},
        {0, std::nullopt, groupBelow(0)},
        {5, names, {}},
        {5, names, groupBelow(9)},
        {5, nothing, {}},
        {0, std::nullopt, groupBelow(10)},
    };
    std::mt19937 random(11);
    for (const auto& view : views) {
        const std::vector<data::RecordId> all = expected(view.key, view.range, view.accept);
        for (int start = 0; start < 4; ++start) {
            ViewRows rows(*m_file);
            rows.show(view.key, view.range, view.accept);
            if (start == 1)
                rows.startAtEnd();
            else if (start > 1 && rows.count() > 0)
                rows.startAtRow(
                    static_cast<qint64>(random() % static_cast<unsigned>(rows.count())));
            ViewRows::Change change;
            qint64 count = rows.count();
            bool more = true;
            while (more) {
                change = {};
                more = rows.learn(QDeadlineTimer(0), change);
                count += change.before + change.after;
                ASSERT_EQ(count, rows.count());
            }
            ASSERT_TRUE(rows.isCountExact());
            ASSERT_EQ(rows.count(), static_cast<qint64>(all.size()));
            const std::vector<StoredRecord> read = rows.read(0, kProducts);
            for (size_t i = 0; i < all.size(); ++i)
                ASSERT_EQ(read[i].id, all[i]) << i;
            for (size_t i = 0; i < all.size(); i += 97) {
                bool restarted = false;
                EXPECT_EQ(rows.rowOf(read[i], &restarted), static_cast<qint64>(i));
                EXPECT_FALSE(restarted);
            }
        }
    }
}

// A model over all products, checked against the rules of item models.
struct Model {
    Model() : table(opened()), model(*table), tester(&model, kFatal) {
        model.setColumns({{str("NUMERO"), {}}, {str("RYHMA"), {}}});
    }
    static std::unique_ptr<data::TtbTable> opened() {
        auto table = std::make_unique<data::TtbTable>();
        company::openCompanyTable(*table, str("TUOTE"));
        return table;
    }
    std::string number(int row) const {
        return model.index(row, 0).data().toString().toStdString();
    }

    static constexpr auto kFatal = QAbstractItemModelTester::FailureReportingMode::Fatal;
    std::unique_ptr<data::TtbTable> table;
    TableModel model;
    QAbstractItemModelTester tester;
};

// A position searched before the count is known is shown immediately and becomes exact later.
TEST_F(ViewRowsTest, PositionsBeforeTheCountIsKnown) {
    Model shown;
    TableModel& model = shown.model;
    const std::vector<data::RecordId> all = expected(0, std::nullopt, groupBelow(5));
    model.show(0, std::nullopt, groupBelow(5));
    EXPECT_EQ(shown.number(0), "00000");
    const int row = model.nearest({str("03000")});
    ASSERT_GE(row, 0);
    const std::string found = shown.number(row);
    EXPECT_GE(found, "03000");
    const QPersistentModelIndex place(model.index(row, 0));
    ASSERT_TRUE(QTest::qWaitFor([&] { return model.isCountExact(); }));
    EXPECT_EQ(model.rowCount(), static_cast<int>(all.size()));
    EXPECT_EQ(shown.number(place.row()), found);
    EXPECT_EQ(model.record(place.row())->id, all[static_cast<size_t>(place.row())]);

    model.show(0, std::nullopt, groupBelow(5));
    model.want(model.rowCount() - 3, model.rowCount() - 1, true);
    EXPECT_EQ(model.record(model.lastRow())->id, all.back());
    ASSERT_TRUE(QTest::qWaitFor([&] { return model.isCountExact(); }));
    EXPECT_EQ(model.record(model.rowCount() - 1)->id, all.back());
}

TEST_F(ViewRowsTest, RowsStayWhenOthersCannotBeRead) {
    Model shown;
    shown.model.show(0, std::nullopt, {});
    const RowTest broken = [](data::RecordId, const QByteArray&) -> bool {
        throw data::DataError(data::ErrorKind::Io, str("TUOTE"), {});
    };
    EXPECT_THROW(shown.model.show(0, std::nullopt, broken), data::DataError);
    EXPECT_EQ(shown.model.rowCount(), kProducts);
    EXPECT_EQ(shown.number(7), "00007");
}

// A record search that looks at a key's texts first finds what a walk of the records finds: few
// records, so many that the records are read after all, folded and exact keys, at the start and
// anywhere; with a restriction that the key does not know.
TEST_F(ViewRowsTest, SearchByKeyTextsFindsTheSameRecords) {
    const std::unique_ptr<data::TtbTable> table = Model::opened();
    for (const auto& [name, text, anywhere] :
         {std::tuple("NIMI", "n7", false), std::tuple("NIMI", "36", true),
          std::tuple("NIMI", "n", false), std::tuple("NIMI", "ö", true),
          std::tuple("NUMERO", "0599", false), std::tuple("NUMERO", "77", true)}) {
        const GridColumn column{str(name), {}};
        const SearchText wanted{QString::fromUtf8(text), anywhere};
        const RowTest matches = columnTest(*table, column, wanted, false);
        const RowTest accept = [this, matches](data::RecordId id, const QByteArray& bytes) {
            return matches(id, bytes) && groupBelow(7)(id, bytes);
        };
        const auto byKey = keyTextTest(*table, column, wanted, false);
        ASSERT_TRUE(byKey);
        ViewRows rows(*m_file);
        rows.show(5, std::nullopt, accept);
        ASSERT_TRUE(rows.learnAll([](double) { return true; }, byKey));
        std::vector<data::RecordId> found;
        for (const StoredRecord& record : rows.read(0, kProducts))
            found.push_back(record.id);
        EXPECT_EQ(found, expected(5, std::nullopt, accept)) << name << ' ' << text;
    }
    EXPECT_FALSE(keyTextTest(*table, {str("NIMI"), {}}, {str("n"), false}, true));
    EXPECT_FALSE(keyTextTest(*table, {str("NIMI2"), {}}, {str("n"), false}, false));
}

// A record that another program removes leaves a blank row, not a wrong one.
TEST_F(ViewRowsTest, RemovedRecordsAreBlankUntilRefreshed) {
    Model shown;
    shown.model.show(0, std::nullopt, groupBelow(5));
    shown.model.learnAll();
    const std::string next = shown.number(3);
    m_file->remove(shown.model.record(2)->id);
    shown.model.reread();
    EXPECT_EQ(shown.number(2), "");
    EXPECT_EQ(shown.number(3), next);
}

}  // namespace
