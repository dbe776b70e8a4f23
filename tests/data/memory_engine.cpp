#include "tests/data/memory_engine.h"

#include <algorithm>

#include "data/record/record_codec.h"
#include "data/record/windows1252.h"

namespace test {

using namespace data;

namespace {

template <typename T>
int order(const T& a, const T& b) {
    return a < b ? -1 : (b < a ? 1 : 0);
}

const uchar* raw(const QByteArray& record) {
    return reinterpret_cast<const uchar*>(record.constData());
}

QByteArray folded(QByteArray text) {
    for (char& c : text)
        c = static_cast<char>(kCaseFoldWeight[static_cast<uchar>(c)]);
    return text;
}

class MemoryFile : public RecordFile {
  public:
    MemoryFile(std::shared_ptr<MemoryStore> store, int program)
        : m_store(std::move(store)), m_program(program) {}

    const RecordLayout& layout() const override { return m_store->layout; }
    const std::vector<KeyDef>& keys() const override { return m_store->keys; }
    qint64 recordCount() override { return static_cast<qint64>(m_store->records.size()); }

    std::vector<StoredRecord> fromEnd(int key, Direction direction, int max) override {
        return take(key, direction, max, [](const StoredRecord&) { return true; });
    }

    std::vector<StoredRecord> seek(int key, SeekOp op, const KeyValues& values, int max) override {
        const bool backward = op == SeekOp::LessOrEqual || op == SeekOp::Less;
        return take(key, backward ? Direction::Backward : Direction::Forward, max,
                    [&](const StoredRecord& record) {
                        const int c = compare(key, record.bytes, values);
                        switch (op) {
                            case SeekOp::Equal:
                                return c == 0;
                            case SeekOp::GreaterOrEqual:
                                return c >= 0;
                            case SeekOp::Greater:
                                return c > 0;
                            case SeekOp::LessOrEqual:
                                return c <= 0;
                            case SeekOp::Less:
                                return c < 0;
                        }
                        return false;
                    });
    }

    std::vector<StoredRecord> next(int key, const StoredRecord& from, Direction direction,
                                   int max) override {
        return take(key, direction, max, [&](const StoredRecord& record) {
            const int c = compareRecords(key, record, from);
            return direction == Direction::Forward ? c > 0 : c < 0;
        });
    }

    int compare(int key, const QByteArray& record, const KeyValues& values) const override {
        QByteArray wanted(m_store->layout.recordLength(), '\0');
        const KeyDef& def = m_store->keys[static_cast<size_t>(key)];
        for (size_t i = 0; i < values.size(); ++i)
            writeValue(m_store->layout.field(def.segments[i].fieldIndex),
                       reinterpret_cast<uchar*>(wanted.data()), values[i],
                       m_store->layout.tableName());
        return compareKeys(def, record, wanted, values.size());
    }

    std::optional<StoredRecord> get(RecordId id) override {
        call("read");
        const auto found = m_store->records.find(id);
        return found == m_store->records.end() ? std::nullopt
                                               : std::optional(StoredRecord{id, found->second});
    }

    bool lock(RecordId id, std::chrono::milliseconds) override {
        if (heldElsewhere(id))
            return false;
        m_store->holders[id].insert(m_program);
        return true;
    }
    void unlock(RecordId id) override {
        std::multiset<int>& holders = m_store->holders[id];
        const auto mine = holders.find(m_program);
        if (mine == holders.end())
            throw std::logic_error("unlock without lock");
        holders.erase(mine);
        if (holders.empty())
            m_store->holders.erase(id);
    }

    RecordId insert(QByteArray& bytes) override {
        call("write");
        checkUnique(0, bytes);
        const RecordId id = ++m_store->lastId;
        m_store->records[id] = bytes;
        return id;
    }
    void update(RecordId id, const QByteArray& bytes) override {
        call("write");
        requireWritable(id);
        checkUnique(id, bytes);
        m_store->records[id] = bytes;
    }
    void remove(RecordId id) override {
        call("write");
        requireWritable(id);
        m_store->records.erase(id);
    }

  private:
    void call(const char* what) const {
        if (m_store->onCall)
            m_store->onCall(what);
    }

    bool heldElsewhere(RecordId id) const {
        const auto found = m_store->holders.find(id);
        return found != m_store->holders.end() && !found->second.contains(m_program);
    }

    void requireWritable(RecordId id) const {
        if (!m_store->records.contains(id))
            throw DataError(ErrorKind::Gone, m_store->layout.tableName(), QString());
        if (heldElsewhere(id))
            throw DataError(ErrorKind::Locked, m_store->layout.tableName(), QString());
    }

    void checkUnique(RecordId self, const QByteArray& bytes) const {
        for (const KeyDef& key : m_store->keys)
            for (const auto& [id, record] : m_store->records)
                if (key.unique && id != self &&
                    compareKeys(key, record, bytes, key.segments.size()) == 0)
                    throw DataError(ErrorKind::DuplicateKey, m_store->layout.tableName(),
                                    QStringLiteral("key %1").arg(key.number));
    }

    int compareField(const KeySegment& segment, const uchar* a, const uchar* b) const {
        const TFieldCacheItem& field = m_store->layout.field(segment.fieldIndex);
        switch (field.kind()) {
            case Kind::String: {
                const QByteArray left = readTextBytes(field, a).toByteArray();
                const QByteArray right = readTextBytes(field, b).toByteArray();
                return segment.ignoreCase ? order(folded(left), folded(right)) : order(left, right);
            }
            case Kind::Float:
                return order(readFloat(field, a), readFloat(field, b));
            case Kind::Date:
                return order(readDate(field, a).toJulianDay(), readDate(field, b).toJulianDay());
            default:
                return order(readInteger(field, a), readInteger(field, b));
        }
    }

    int compareKeys(const KeyDef& key, const QByteArray& a, const QByteArray& b,
                    size_t fields) const {
        for (size_t i = 0; i < fields; ++i)
            if (const int c = compareField(key.segments[i], raw(a), raw(b)))
                return key.segments[i].descending ? -c : c;
        return 0;
    }

    int compareRecords(int key, const StoredRecord& a, const StoredRecord& b) const {
        const KeyDef& def = m_store->keys[static_cast<size_t>(key)];
        const int c = compareKeys(def, a.bytes, b.bytes, def.segments.size());
        return c != 0 ? c : order(a.id, b.id);
    }

    template <typename Test>
    std::vector<StoredRecord> take(int key, Direction direction, int max, Test test) {
        ++m_store->reads;
        call("read");
        std::vector<StoredRecord> found;
        for (const auto& [id, bytes] : m_store->records)
            if (StoredRecord record{id, bytes}; test(record))
                found.push_back(std::move(record));
        std::sort(found.begin(), found.end(), [&](const StoredRecord& a, const StoredRecord& b) {
            const int c = compareRecords(key, a, b);
            return direction == Direction::Forward ? c < 0 : c > 0;
        });
        if (found.size() > static_cast<size_t>(max))
            found.resize(static_cast<size_t>(max));
        return found;
    }

    std::shared_ptr<MemoryStore> m_store;
    int m_program;
};

}  // namespace

MemoryStore::MemoryStore(const TableSource& source)
    : layout(source.name, source.fields, source.span()) {
    for (const KeySource& key : source.keys) {
        KeyDef def{key.number, key.unique, {}};
        for (const QString& field : key.fields)
            def.segments.push_back({layout.indexOf(field), key.ignoreCase, false});
        keys.push_back(def);
    }
}

std::unique_ptr<RecordFile> MemoryDatabase::openTable(const QString& tableName) {
    if (tableName.compare(m_store->layout.tableName(), Qt::CaseInsensitive) != 0)
        throw DataError(ErrorKind::NoSuchTable, tableName, QString());
    return std::make_unique<MemoryFile>(m_store, m_program);
}

std::unique_ptr<SqlStatement> MemoryDatabase::prepare(const QString& sql) {
    if (!makeStatement)
        throw DataError(ErrorKind::Engine, QString(), QStringLiteral("no SQL here"));
    return makeStatement(sql);
}

}  // namespace test
