#include <QRandomGenerator>
#include <algorithm>

#include "tests/data/table_fixture.h"

// Record tables against a model: a list filtered and sorted again at every step.

namespace {

using namespace data;
using test::Engine;
using test::KoeTable;

struct Row {
    RecordId id = 0;
    int nro = 0;
    int ryhma = 0;
    QString nimi;
    double hinta = 0;

    bool operator==(const Row&) const = default;
};

// The model's key: folded name, or numbers.
using Key = std::vector<double>;

class Model {
  public:
    std::map<RecordId, Row> rows;
    std::optional<Row> current;
    bool eof = true;
    bool bof = true;
    int index = 0;
    bool filtered = false;
    bool withRecordFilter = false;
    std::optional<std::pair<std::vector<double>, std::vector<double>>> range;

    // Names are N and a letter, which sorts by its position in the alphabet.
    static double rank(const QString& nimi) { return nimi.at(1).toUpper().unicode(); }

    Key keyOf(const Row& row) const {
        switch (index) {
            case 0:
                return {double(row.nro)};
            case 1:
                return {rank(row.nimi)};
            default:
                return {double(row.ryhma), row.hinta};
        }
    }

    static int compareLeading(const Key& key, const Key& values) {
        for (size_t i = 0; i < values.size(); ++i)
            if (key[i] != values[i])
                return key[i] < values[i] ? -1 : 1;
        return 0;
    }

    bool isBefore(const Row& a, const Row& b) const {
        const int c = compareLeading(keyOf(a), keyOf(b));
        return c != 0 ? c < 0 : a.id < b.id;
    }

    bool contains(const Row& row) const {
        if (range && (compareLeading(keyOf(row), range->first) < 0 ||
                      compareLeading(keyOf(row), range->second) > 0))
            return false;
        if (!filtered)
            return true;
        return row.hinta >= 30 && row.ryhma != 2 && (!withRecordFilter || row.nro % 2 == 0);
    }

    std::vector<Row> view() const {
        std::vector<Row> list;
        for (const auto& [id, row] : rows)
            if (contains(row))
                list.push_back(row);
        std::sort(list.begin(), list.end(),
                  [this](const Row& a, const Row& b) { return isBefore(a, b); });
        return list;
    }

    void moveTo(std::optional<Row> row, bool atEof = false) {
        current = std::move(row);
        eof = atEof || !current;
        bof = !current;
    }

    std::optional<Row> following() const {
        for (const Row& row : view())
            if (isBefore(*current, row))
                return row;
        return std::nullopt;
    }
    std::optional<Row> preceding() const {
        std::optional<Row> found;
        for (const Row& row : view())
            if (isBefore(row, *current))
                found = row;
        return found;
    }
    std::optional<Row> end(bool last) const {
        const std::vector<Row> list = view();
        return list.empty() ? std::nullopt : std::optional(last ? list.back() : list.front());
    }

    bool step(bool forward) {
        if (!current)
            return false;
        const std::optional<Row> found = forward ? following() : preceding();
        eof = !found && forward;
        bof = !found && !forward;
        if (found)
            current = found;
        return found.has_value();
    }

    // After the current record left the view or the table.
    void moveOn() {
        const std::optional<Row> found = current ? following() : end(false);
        moveTo(found ? found : end(true), !found);
    }
    void moveOnUnlessShown() {
        if (!current || !contains(*current))
            moveOn();
    }
};

class RandomWalk {
  public:
    RandomWalk(Engine& engine, quint32 seed)
        : m_random(seed),
          m_table(engine.database()),
          m_other(std::make_unique<KoeTable>(engine.database())) {
        m_table.setFilter("hinta >= 30 and not (ryhma = 2)");
        for (int i = 0; i < 40; ++i)
            insert();
        m_table.first();
        m_model.moveTo(m_model.end(false));
    }

    void run(int steps) {
        using Walk = RandomWalk;
        using Call = void (Walk::*)();
        constexpr Call kCalls[] = {&Walk::toEnd,    &Walk::toEnd,       &Walk::step,
                                   &Walk::step,     &Walk::step,        &Walk::step,
                                   &Walk::step,     &Walk::findKey,     &Walk::findNearest,
                                   &Walk::setRange, &Walk::cancelRange, &Walk::setIndex,
                                   &Walk::filter,   &Walk::insert,      &Walk::insert,
                                   &Walk::edit,     &Walk::edit,        &Walk::remove,
                                   &Walk::bookmark, &Walk::otherWrites, &Walk::otherWrites};
        for (int i = 0; i < steps; ++i) {
            const auto call = static_cast<size_t>(below(static_cast<int>(std::size(kCalls))));
            (this->*kCalls[call])();
            ASSERT_NO_FATAL_FAILURE(compare()) << "step " << i << ", kCalls[" << call << ']';
        }
    }

  private:
    int below(int limit) { return m_random.bounded(limit); }

    KeyValues keyValues(int fields) {
        switch (m_model.index) {
            case 0:
                return {below(90)};
            case 1:
                return {QString("n") + QChar(u'a' + below(8))};
            default:
                return fields == 1 ? KeyValues{below(5)} : KeyValues{below(5), 10.0 * below(8)};
        }
    }

    Key modelKey(const KeyValues& values) const {
        Key key;
        for (const Value& value : values)
            key.push_back(m_model.index == 1 ? Model::rank(value.toString()) : value.toDouble());
        return key;
    }

    Row randomRow() {
        Row row;
        do
            row.nro = below(90);
        while (std::any_of(m_model.rows.begin(), m_model.rows.end(),
                           [&](const auto& entry) { return entry.second.nro == row.nro; }));
        row.ryhma = below(5);
        row.nimi = QString("N") + QChar((below(2) != 0 ? u'a' : u'A') + below(8));
        row.hinta = 10.0 * below(8);
        return row;
    }

    static void fill(KoeTable& table, const Row& row) {
        table["Nro"].setInteger(row.nro);
        table["ryhma"].setInteger(row.ryhma);
        table["NIMI"].setString(row.nimi);
        table["hinta"].setFloat(row.hinta);
    }

    void insert() {
        if (m_model.rows.size() == 60)
            return;
        Row row = randomRow();
        m_table.insert();
        fill(m_table, row);
        m_table.post();
        row.id = m_table.recordId();
        m_model.rows[row.id] = row;
        m_model.moveTo(row);
    }

    void toEnd() {
        const bool last = below(2) == 0;
        last ? m_table.last() : m_table.first();
        m_model.moveTo(m_model.end(last));
    }
    void step() {
        const bool forward = below(5) < 3;
        forward ? m_table.next() : m_table.prior();
        m_model.step(forward);
    }
    void cancelRange() {
        m_table.cancelRange();
        const bool hadRange = m_model.range.has_value();
        m_model.range.reset();
        if (hadRange && !m_model.current)
            m_model.moveOn();
    }

    void findKey() {
        const KeyValues values = keyValues(1 + below(2));
        const Key key = modelKey(values);
        bool expected = false;
        for (const Row& row : m_model.view()) {
            if (Model::compareLeading(m_model.keyOf(row), key) == 0) {
                m_model.moveTo(row);
                expected = true;
                break;
            }
        }
        EXPECT_EQ(m_table.findKey(values), expected);
    }

    void findNearest() {
        const KeyValues values = keyValues(1 + below(2));
        const Key key = modelKey(values);
        std::optional<Row> found;
        for (const Row& row : m_model.view())
            if (!found && Model::compareLeading(m_model.keyOf(row), key) >= 0)
                found = row;
        const bool exact = found && Model::compareLeading(m_model.keyOf(*found), key) == 0;
        if (found)
            m_model.moveTo(found);
        else
            m_model.moveTo(m_model.end(true), true);
        EXPECT_EQ(m_table.findNearest(values), exact);
    }

    void setRange() {
        const KeyValues low = keyValues(1 + below(2));
        const KeyValues high = below(3) == 0 ? low : keyValues(1 + below(2));
        m_table.setRange(low, high);
        m_model.range = {modelKey(low), modelKey(high)};
        m_model.moveTo(m_model.end(false));
    }

    void setIndex() {
        m_model.index = below(3);
        m_model.range.reset();
        m_table.setIndexName(QString::number(m_model.index));
        if (!m_model.current)
            m_model.moveOn();
    }

    void filter() {
        m_model.filtered = below(2) == 0;
        if (m_table.filtered() != m_model.filtered) {
            m_table.setFiltered(m_model.filtered);
            m_model.moveOnUnlessShown();
        }
    }

    void edit() {
        if (!m_model.current)
            return;
        Row row = randomRow();
        row.id = m_model.current->id;
        const bool keepKey = below(2) == 0;
        m_table.edit();
        if (keepKey) {  // the other fields only
            row = m_model.rows.at(row.id);
            row.hinta += m_model.index == 2 ? 0 : 10;
        }
        fill(m_table, row);
        if (below(4) == 0) {
            m_table.cancel();
            return;
        }
        m_table.post();
        m_model.rows[row.id] = row;
        m_model.current = row;
    }

    void remove() {
        if (!m_model.current)
            return;
        m_model.rows.erase(m_model.current->id);
        m_model.moveOn();
        m_table.deleteRecord();
    }

    void bookmark() {
        if (!m_model.current)
            return;
        const Bookmark mark = m_table.bookmark();
        const Row marked = *m_model.current;
        for (int i = 0; i < 3; ++i) {
            m_table.next();
            m_model.step(true);
        }
        m_table.refresh();
        m_model.moveOnUnlessShown();
        const bool expected = m_model.contains(marked);
        EXPECT_EQ(m_table.gotoBookmark(mark), expected);
        if (expected)
            m_model.moveTo(marked);
    }

    // Changes by another program show after a refresh.
    void otherWrites() {
        for (int i = 0; i < 3 && !m_model.rows.empty(); ++i) {
            auto victim = m_model.rows.begin();
            std::advance(victim, below(static_cast<int>(m_model.rows.size())));
            EXPECT_TRUE(m_other->findKey({victim->second.nro}));
            if (below(2) == 0) {
                m_other->deleteRecord();
                m_model.rows.erase(victim);
            } else {
                Row row = randomRow();
                row.id = victim->first;
                m_other->edit();
                fill(*m_other, row);
                m_other->post();
                victim->second = row;
            }
        }
        m_table.refresh();
        if (!m_model.current) {
            m_model.moveTo(m_model.end(false));
            return;
        }
        const auto stored = m_model.rows.find(m_model.current->id);
        if (stored != m_model.rows.end() && m_model.contains(stored->second))
            m_model.current = stored->second;
        else
            m_model.moveOn();
    }

    void compare() {
        ASSERT_EQ(m_table.isEmpty(), !m_model.current);
        ASSERT_EQ(m_table.eof(), m_model.eof);
        ASSERT_EQ(m_table.bof(), m_model.bof);
        if (!m_model.current)
            return;
        const Row shown{m_table.recordId(), static_cast<int>(m_table.nro()),
                        static_cast<int>(m_table["Ryhma"].asInteger()), m_table.nimi(),
                        m_table["HINTA"].asFloat()};
        ASSERT_TRUE(shown == *m_model.current) << shown.nro << " for " << m_model.current->nro;
    }

    QRandomGenerator m_random;
    KoeTable m_table;
    std::unique_ptr<KoeTable> m_other;
    Model m_model;
};

template <typename T>
class TableRandom : public ::testing::Test {};
using StoredEngines =
    ::testing::Types<test::EmbeddedTestEngine, test::ShopsTestEngine, test::PlainShopsTestEngine>;
TYPED_TEST_SUITE(TableRandom, StoredEngines);

TYPED_TEST(TableRandom, AgreesWithAModel) {
    for (quint32 seed = 111; seed <= 120; ++seed) {
        SCOPED_TRACE(seed);
        TypeParam engine;
        RandomWalk(engine, seed).run(300);
        if (this->HasFailure())
            return;
    }
}

}  // namespace
