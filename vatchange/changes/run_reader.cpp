#include "vatchange/changes/run_reader.h"

#include "data/journal/entry_fields.h"
#include "vatchange/changes/level_order.h"
#include "vatchange/journal/run_chain.h"
#include "vatchange/journal/run_notes.h"
#include "vatchange/journal/run_upkeep.h"
#include "vatchange/rules/change_day.h"

namespace vatchange {

namespace {

constexpr int kBatch = 256;

ChangeList::Run readRun(data::RunJournal& journal, qint64 run) {
    ChangeList::Run read{requireRun(journal, run, EvenRunning::Yes), definitionOfRun(journal, run)};
    if (const std::optional<QByteArray> rates = journal.note(run, kRatesNote))
        read.rates = ratesOfNote(*rates);
    return read;
}

bool changesClass(const ReadTable& table, const std::vector<ReadTable::Value>& values) {
    return std::any_of(values.begin(), values.end(), [&table](const ReadTable::Value& value) {
        return table.isClass(value.field);
    });
}

}  // namespace

RunReader::RunReader(data::Database& database, qint64 run, ChangeList& list)
    : m_database(database),
      m_journal(requireJournal(database)),
      m_run(run),
      m_list(list),
      m_read(readRun(m_journal, run)),
      m_place(list.addRun(m_read)),
      m_undoTables(database, m_journal, run, QString()),
      m_tables(m_journal.tables(run).size()),
      m_names(database),
      m_takenBack(takenBack(m_journal, run)),
      m_last(m_journal.lastEntry(run)),
      m_firstRecord(list.recordCount()) {}

double RunReader::share() const {
    return m_last == 0 ? 1.0 : static_cast<double>(m_seq) / static_cast<double>(m_last);
}

bool RunReader::read(const QDeadlineTimer& deadline) {
    do {
        const std::vector<data::JournalEntry> entries =
            m_journal.entries(m_run, m_seq, data::Direction::Forward, kBatch);
        for (const data::JournalEntry& entry : entries) {
            m_seq = entry.seq;
            if (!entry.isMark)
                see(entry);
        }
        if (entries.size() < kBatch)
            return false;
    } while (!deadline.hasExpired());
    return true;
}

int RunReader::product(const QString& number) {
    if (number.isEmpty())
        return -1;
    bool added = false;
    const int product = m_list.addProduct(number, &added);
    if (added)
        m_list.setProductName(product, m_names.nameOf(number));
    return product;
}

int RunReader::addRecord(ReadTable& table, const data::JournalEntry& entry,
                         const QByteArray* present) {
    const QString number = present != nullptr && table.productNeedsRecord()
                               ? table.productIn(*present)
                               : table.productByKey(entry.key);
    int listed = -1;
    if (table.isProducts() && present != nullptr && !number.isEmpty()) {
        bool added = false;
        listed = m_list.addProduct(number, &added);
        if (added)
            m_list.setProductName(listed, m_names.nameIn(*present));
    } else {
        listed = product(number);
    }
    const int record = m_list.addRecord(
        {m_place, table.listTable(), entry.record, listed, table.table().key(entry.key)}, true);
    m_firstRows.push_back(-1);
    return record;
}

void RunReader::index(ReadTable& table) const {
    if (table.indexed)
        return;
    table.indexed = true;
    for (int record = m_firstRecord; record < m_list.recordCount(); ++record) {
        const ChangeList::Record listed = m_list.record(record);
        if (listed.run == m_place && listed.table == table.listTable())
            table.records.try_emplace(listed.id, record);
    }
}

int RunReader::recordOf(const QString& table, data::RecordId id) {
    for (const std::unique_ptr<ReadTable>& read : m_tables) {
        if (!read || read->table().stored.name.compare(table, Qt::CaseInsensitive) != 0 ||
            !read->seen.contains(id))
            continue;
        index(*read);
        const auto found = read->records.find(id);
        return found == read->records.end() ? -1 : found->second;
    }
    return -1;
}

int RunReader::firstRow(int record) const {
    const auto place = static_cast<size_t>(record - m_firstRecord);
    return place < m_firstRows.size() ? m_firstRows[place] : -1;
}

template <typename See>
void RunReader::visitRows(int record, See&& see) const {
    const int first = firstRow(record);
    if (first < 0)
        return;
    int row = first;
    for (; row < m_list.rowCount() && m_list.recordIndex(row) == record; ++row) {
        if (!see(row))
            return;
    }
    for (auto [later, end] = m_laterRows.equal_range(record); later != end; ++later) {
        if (later->second >= row && !see(later->second))
            return;
    }
}

int RunReader::rowOf(int record, int field) const {
    int found = -1;
    visitRows(record, [&](int row) {
        if (m_list.fieldIndex(row) == field)
            found = row;
        return found < 0;
    });
    return found;
}

void RunReader::see(const data::JournalEntry& entry) {
    std::unique_ptr<ReadTable>& slot = m_tables.at(static_cast<size_t>(entry.table));
    if (!slot)
        slot = std::make_unique<ReadTable>(*m_undoTables.at(entry.table), m_list, m_read);
    ReadTable& table = *slot;
    const bool isNew = table.seen.add(entry.record);
    const bool orderRow = OrderRows::isRowTable(table.table().stored.name);
    std::optional<data::StoredRecord> present;
    if (table.isProducts() || orderRow || (isNew && table.productNeedsRecord()))
        present = table.table().file->get(entry.record);
    const QByteArray* bytes = present ? &present->bytes : nullptr;
    int record = -1;
    if (isNew) {
        record = addRecord(table, entry, bytes);
        if (table.indexed)
            table.records[entry.record] = record;
    } else {
        index(table);
        record = table.records.at(entry.record);
    }
    const auto placeOfRecord = static_cast<size_t>(record - m_firstRecord);
    if (entry.operation == data::Operation::Update) {
        const std::vector<ReadTable::Value>& values = table.changedFields(entry);
        for (const ReadTable::Value& value : values) {
            int row = isNew ? -1 : rowOf(record, value.field);
            if (row >= 0) {
                m_list.setAfter(row, value.after);
            } else {
                row = m_list.addRow(record, value.field, ChangeKind::Field, value.before,
                                    value.after);
                if (m_firstRows[placeOfRecord] < 0)
                    m_firstRows[placeOfRecord] = row;
                else if (!isNew)
                    m_laterRows.emplace(record, row);
            }
            judge(row, table);
        }
        if (table.isProducts() && bytes != nullptr)
            judgeProduct(table, entry, record, values, *bytes);
        if (orderRow && bytes != nullptr)
            judgeOrderRow(table, record, values, *bytes);
    } else {
        const ChangeKind kind =
            entry.operation == data::Operation::Insert ? ChangeKind::Inserted : ChangeKind::Deleted;
        const int row = m_list.addRow(record, table.wholeField(), kind, 0, 0);
        if (m_firstRows[placeOfRecord] < 0)
            m_firstRows[placeOfRecord] = row;
        else
            m_laterRows.emplace(record, row);
    }
    if (m_takenBack.contains(0, entry.seq)) {
        visitRows(record, [this](int row) {
            if (m_list.kind(row) != ChangeKind::Unchanged)
                m_list.mark(row, ChangeFinding::Undone);
            return true;
        });
    }
}

void RunReader::judge(int row, const ReadTable& table) const {
    const ChangedField& field = m_list.field(row);
    const bool far =
        table.expected(m_list.fieldIndex(row)).isFar(m_list.before(row), m_list.after(row));
    const bool empty = m_read.definition && field.sold && !(m_list.after(row) > 0);
    const auto set = [this, row](ChangeFinding finding, bool on) {
        if (on)
            m_list.mark(row, finding);
        else
            m_list.unmark(row, finding);
    };
    set(ChangeFinding::FarFromExpected, far);
    set(ChangeFinding::NotPositive, empty);
}

void RunReader::judgeProduct(ReadTable& table, const data::JournalEntry& entry, int record,
                             const std::vector<ReadTable::Value>& values,
                             const QByteArray& present) {
    if (!m_read.definition)
        return;
    // what the entry does not change is as it stands now
    QByteArray before = present;
    data::applyBefore(entry, before);
    QByteArray after = present;
    data::applyAfter(entry, after);
    const ProductPrices pricesAfter = table.prices(after);
    const auto rowOfLevel = [&](int level) {
        const int field = table.levelField(level);
        int row = rowOf(record, field);
        if (row < 0) {
            const double value = table.valueIn(field, after);
            row = m_list.addRow(record, field, ChangeKind::Unchanged, value, value);
            m_laterRows.emplace(record, row);
        }
        return row;
    };
    for (const LevelOrderChange& change : changedLevelOrder(table.prices(before), pricesAfter))
        m_list.mark(rowOfLevel(change.level), ChangeFinding::LevelOrder, change.reason);
    if (!changesClass(table, values))
        return;
    for (int level = 1; level <= kPriceLevels; ++level) {
        const double price = pricesAfter.levels[static_cast<size_t>(level - 1)];
        // a level of 0 is one that is not used, but for the retail price
        if (price < 0 || (price == 0 && level == 1))
            m_list.mark(rowOfLevel(level), ChangeFinding::NotPositive);
    }
}

void RunReader::judgeOrderRow(const ReadTable& table, int record,
                              const std::vector<ReadTable::Value>& values,
                              const QByteArray& present) {
    // a margin mark alone converts nothing
    if (!m_read.definition || !changesClass(table, values))
        return;
    std::unique_ptr<OrderRows>& orders = m_orders[table.table().stored.name];
    if (!orders)
        orders = std::make_unique<OrderRows>(m_database, table.table().stored.name);
    const QString reason = orderRisk(orders->open(present), changeDay(*m_read.definition));
    if (reason.isEmpty())
        return;
    int row = rowOf(record, values.front().field);
    for (const ReadTable::Value& value : values) {
        if (m_list.fields()[static_cast<size_t>(value.field)].sold)
            row = rowOf(record, value.field);
    }
    m_list.mark(row, ChangeFinding::OrderAtRisk, reason);
}

}  // namespace vatchange
