#include "vatchange/journal/journal_check.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "data/journal/entry_fields.h"
#include "vatchange/journal/ignored_changes.h"
#include "vatchange/journal/record_fields.h"
#include "vatchange/journal/run_chain.h"
#include "vatchange/journal/verified_fields.h"

namespace vatchange {

using data::JournalEntry;
using data::Operation;

namespace {

data::DataError cannotRead(const QString& table, const QString& english, const QString& finnish) {
    return data::DataError(data::ErrorKind::Damaged, table, english).inFinnish(finnish);
}

bool isVatClass(const QString& table, const QString& field) {
    static const std::map<QString, QStringList> kFields = {
        {QStringLiteral("TUOTE"),
         {QStringLiteral("LVV"), QStringLiteral("ALV2"), QStringLiteral("OSTOVERO")}},
        {QStringLiteral("TRYHMA"),
         {QStringLiteral("VERO"), QStringLiteral("ALV2"), QStringLiteral("OSTOVERO")}},
        {QStringLiteral("MTRIVI"), {QStringLiteral("VEROKANTA")}},
        {QStringLiteral("WINOTRI"), {QStringLiteral("ALVLUOKKA")}}};
    const auto found = kFields.find(table);
    return found != kFields.end() && found->second.contains(field.toUpper());
}

}  // namespace

struct JournalCheck::Field {
    const data::TFieldCacheItem* item = nullptr;
    bool ignored = false;
    bool vatClass = false;
    bool salesClass = false;  // of a product
    const PriceField* price = nullptr;
    const data::TFieldCacheItem* vat0 = nullptr;
    data::IdSet settled;  // records of which a later entry has been seen
    qint64 seq = 0;       // the entry that is being looked at, if it changes the field
    PriceSums sums;
    double percents = 0.0;

    bool sameBytes(const uchar* one, const uchar* other) const {
        if (item->storage == data::Storage::Bit)
            return ((one[item->offset] ^ other[item->offset]) & item->mask) == 0;
        return std::memcmp(one + item->offset, other + item->offset, item->storedLength) == 0;
    }
    int end() const { return item->offset + item->storedLength; }
};

struct JournalCheck::Table {
    QString name;  // in capitals
    std::unique_ptr<data::TableFile> file;
    bool consumed = false;
    bool settings = false;
    std::vector<Field> fields;    // by offset
    std::vector<size_t> firstAt;  // for each byte: the first field that reaches beyond it
    std::array<Field*, kPriceLevels> levels{};
    data::IdSet seen;
    data::IdSet all;  // whatever became of them
    data::IdSet* converted = nullptr;
    data::IdSet* undone = nullptr;
    QByteArray before;  // the fields that an entry changes; other bytes mean nothing
    QByteArray after;
    std::optional<data::StoredRecord> present;
    data::RecordId presentId = 0;
    bool presentRead = false;

    const QByteArray* record(data::RecordId id) {
        if (!presentRead || presentId != id) {
            present = file->get(id);
            presentId = id;
            presentRead = true;
        }
        return present ? &present->bytes : nullptr;
    }
};

JournalCheck::JournalCheck(data::Database& database, data::RunJournal& journal, qint64 run,
                           const std::optional<ChangeDefinition>& definition,
                           Verification& verification, FindingList& findings)
    : m_database(database),
      m_journal(journal),
      m_run(run),
      m_definition(definition),
      m_verification(verification),
      m_findings(findings),
      m_takenBack(takenBack(journal, run)),
      m_laterRuns(journal, run) {
    if (definition)
        m_rules.emplace(*definition);
}

JournalCheck::~JournalCheck() = default;

void JournalCheck::run() {
    m_journalTables = m_journal.tables(m_run);
    m_tables.resize(m_journalTables.size());
    m_journal.visit(m_run, data::Direction::Backward, [this](const JournalEntry& entry) {
        if (!entry.isMark)
            see(entry);
        return true;
    });
    for (const std::unique_ptr<Table>& table : m_tables) {
        if (!table)
            continue;
        m_verification.records.push_back({table->name, table->all.count()});
        for (Field& field : table->fields) {
            if (field.sums.count == 0)
                continue;
            if (field.sums.compared > 0)
                field.sums.meanPercent = field.percents / static_cast<double>(field.sums.compared);
            m_verification.sums.push_back(field.sums);
        }
    }
}

JournalCheck::Table& JournalCheck::table(int index) {
    if (index < 0 || static_cast<size_t>(index) >= m_tables.size())
        throw cannotRead(QStringLiteral("run journal"),
                         QStringLiteral("run %1 names a table that it does not list").arg(m_run),
                         QStringLiteral("ajopäiväkirjan ajo %1 on vioittunut").arg(m_run));
    std::unique_ptr<Table>& slot = m_tables[static_cast<size_t>(index)];
    if (slot)
        return *slot;
    const data::JournalTable& described = m_journalTables[static_cast<size_t>(index)];
    auto table = std::make_unique<Table>();
    table->file = m_database.openTable(described.name);
    const data::RecordLayout& layout = table->file->layout();
    if (!data::describes(described, layout, table->file->keys()))
        throw cannotRead(described.name,
                         QStringLiteral("the catalogue has described it differently since run %1; "
                                        "its changes can no longer be verified")
                             .arg(m_run),
                         QStringLiteral("tietohakemiston kuvaus on muuttunut ajon %1 jälkeen, eikä "
                                        "ajon muutoksia voi enää tarkastaa")
                             .arg(m_run));
    table->name = described.name.toUpper();
    table->consumed = isConsumedTable(table->name);
    table->settings = table->name == u"INI";
    table->converted = &m_converted[table->name];
    table->undone = &m_undone[table->name];
    table->before.fill('\0', layout.recordLength());
    table->after = QByteArray(layout.recordLength(), '\0');
    for (const data::TFieldCacheItem& item : layout.fields()) {
        Field field;
        field.item = &item;
        field.ignored = isChangeDate(table->name, item.name);
        field.vatClass = isVatClass(table->name, item.name);
        field.salesClass = field.vatClass && table->name == u"TUOTE" &&
                           item.name.compare(u"LVV", Qt::CaseInsensitive) == 0;
        for (const PriceField& price : priceFields()) {
            if (price.table == table->name &&
                item.name.compare(price.field, Qt::CaseInsensitive) == 0) {
                field.price = &price;
                field.vat0 = fieldOf(layout, price.vat0.toLatin1().constData());
            }
        }
        field.sums.table = described.name;
        field.sums.field = item.name;
        table->fields.push_back(std::move(field));
    }
    std::stable_sort(
        table->fields.begin(), table->fields.end(),
        [](const Field& a, const Field& b) { return a.item->offset < b.item->offset; });
    for (int byte = 0; byte < layout.recordLength(); ++byte) {
        const auto first = std::find_if(table->fields.begin(), table->fields.end(),
                                        [byte](const Field& field) { return field.end() > byte; });
        table->firstAt.push_back(static_cast<size_t>(first - table->fields.begin()));
    }
    if (table->name == u"TUOTE") {
        for (Field& field : table->fields) {
            for (size_t level = 0; level < table->levels.size(); ++level) {
                if (field.item->name.compare(kPriceColumns[level + 1], Qt::CaseInsensitive) == 0)
                    table->levels[level] = &field;
            }
        }
    }
    slot = std::move(table);
    return *slot;
}

Finding JournalCheck::finding(Table& table, const JournalEntry& entry, const Field* field,
                              const QByteArray* present) {
    Finding finding;
    const data::RecordLayout& layout = table.file->layout();
    finding.table = layout.tableName();
    finding.record = entry.record;
    finding.key = data::keyText(layout, table.file->keys(), entry);
    if (field == nullptr)
        return finding;
    finding.field = field->item->name;
    if (entry.operation != Operation::Insert)
        finding.before = textOf(*field->item, table.before);
    finding.after = textOf(*field->item, table.after);
    if (present != nullptr)
        finding.present = textOf(*field->item, *present);
    return finding;
}

void JournalCheck::see(const JournalEntry& entry) {
    m_findings.tick();
    ++m_verification.changes;
    Table& t = table(entry.table);
    t.all.add(entry.record);
    // an undo takes back a record as a whole, from its last entry on
    if (m_takenBack.contains(0, entry.seq))
        t.undone->add(entry.record);
    if (t.undone->contains(entry.record)) {
        ++m_verification.undone;
        return;
    }
    if (t.consumed)
        return;
    if (t.settings && isRunMark(t.name, data::keyText(t.file->layout(), t.file->keys(), entry)))
        return;
    const bool last = t.seen.add(entry.record);
    const QByteArray* present = t.record(entry.record);
    if (last && (present == nullptr) != (entry.operation == Operation::Delete)) {
        m_findings.add(present == nullptr ? FindingKind::Gone : FindingKind::Returned, [&] {
            Finding found = finding(t, entry, nullptr, present);
            found.laterRun = m_laterRuns.lastThatChanged(t.name, entry.record);
            return found;
        });
    }
    for (const data::ByteChange& change : entry.changes) {
        const qsizetype length = std::max(change.before.size(), change.after.size());
        if (change.offset < 0 || change.offset + length > t.before.size())
            throw cannotRead(
                QStringLiteral("run journal"),
                QStringLiteral("entry %1 of run %2 is longer than its record")
                    .arg(entry.seq)
                    .arg(m_run),
                QStringLiteral("ajopäiväkirjan merkintä %1 on vioittunut").arg(entry.seq));
        const auto put = [&](const QByteArray& bytes, QByteArray& record) {
            if (bytes.isEmpty())
                std::memset(record.data() + change.offset, 0, static_cast<size_t>(length));
            else
                std::memcpy(record.data() + change.offset, bytes.constData(),
                            static_cast<size_t>(length));
        };
        put(change.before, t.before);
        put(change.after, t.after);
    }
    for (const data::ByteChange& change : entry.changes) {
        const qsizetype end = change.offset + std::max(change.before.size(), change.after.size());
        if (change.offset >= end)
            continue;
        for (size_t i = t.firstAt[static_cast<size_t>(change.offset)];
             i < t.fields.size() && t.fields[i].item->offset < end; ++i) {
            Field& field = t.fields[i];
            if (field.ignored || field.item->offset < change.offset || field.end() > end ||
                field.sameBytes(bytesOf(t.before), bytesOf(t.after)))
                continue;
            field.seq = entry.seq;
        }
    }
    // only now is it known which fields the entry changes
    for (const data::ByteChange& change : entry.changes) {
        const qsizetype end = change.offset + std::max(change.before.size(), change.after.size());
        if (change.offset >= end)
            continue;
        for (size_t i = t.firstAt[static_cast<size_t>(change.offset)];
             i < t.fields.size() && t.fields[i].item->offset < end; ++i) {
            if (t.fields[i].seq == entry.seq && t.fields[i].item->offset >= change.offset)
                seeField(t, i, entry, present);
        }
    }
}

void JournalCheck::seeField(Table& t, size_t index, const JournalEntry& entry,
                            const QByteArray* present) {
    Field& field = t.fields[index];
    const bool last = field.settled.add(entry.record);
    if (last && present != nullptr && entry.operation != Operation::Delete &&
        !field.sameBytes(bytesOf(t.after), bytesOf(*present)) &&
        textOf(*field.item, t.after) != textOf(*field.item, *present)) {
        m_findings.add(FindingKind::ChangedSince, [&] {
            Finding found = finding(t, entry, &field, present);
            found.laterRun = m_laterRuns.lastThatChanged(t.name, entry.record);
            return found;
        });
    }
    if (field.vatClass)
        t.converted->add(entry.record);
    if (!m_definition || entry.operation != Operation::Update)
        return;
    if (field.price != nullptr) {
        addToSums(t, field, last, present);
        if (last && field.price->sold)
            judgePrice(t, field, entry, present);
    }
    if (field.salesClass && last && present != nullptr)
        judgeLevels(t, entry, *present);
}

void JournalCheck::addToSums(const Table& t, Field& field, bool last, const QByteArray* present) {
    const double before = amountOf(*field.item, bytesOf(t.before));
    const double after = amountOf(*field.item, bytesOf(t.after));
    PriceSums& sums = field.sums;
    const auto percent = [](double from, double to) { return (to / from - 1.0) * 100.0; };
    sums.before += before;
    if (last) {
        ++sums.count;
        sums.after += after;
        if (before > 0) {
            ++sums.compared;
            field.percents += percent(before, after);
        }
        return;
    }
    // Changed more than once: the entry seen before began with what this one left.
    sums.before -= after;
    const double left = present != nullptr ? amountOf(*field.item, bytesOf(*present)) : after;
    if (after > 0) {
        --sums.compared;
        field.percents -= percent(after, left);
    }
    if (before > 0) {
        ++sums.compared;
        field.percents += percent(before, left);
    }
}

void JournalCheck::judgePrice(Table& t, const Field& field, const JournalEntry& entry,
                              const QByteArray* present) {
    const double before = amountOf(*field.item, bytesOf(t.before));
    const double after = amountOf(*field.item, bytesOf(t.after));
    if (!(before > 0) || after > 0)
        return;
    bool emptyVat0 = false;
    if (field.vat0 != nullptr && computedFromVat0(*field.price, *m_definition)) {
        const auto vat0 = std::find_if(t.fields.begin(), t.fields.end(),
                                       [&field](const Field& f) { return f.item == field.vat0; });
        const bool changed = vat0->seq == entry.seq;
        const QByteArray* record = changed ? &t.before : present;
        emptyVat0 = record != nullptr && amountOf(*field.vat0, bytesOf(*record)) == 0.0;
    }
    m_findings.add(emptyVat0 ? FindingKind::EmptyVat0 : FindingKind::NotPositive,
                   [&] { return finding(t, entry, &field, present); });
}

void JournalCheck::judgeLevels(Table& t, const JournalEntry& entry, const QByteArray& present) {
    const auto valueBefore = [&](const Field& field) {
        return amountOf(*field.item, bytesOf(field.seq == entry.seq ? t.before : present));
    };
    for (size_t level = 0; level < t.levels.size(); ++level) {
        const Field* field = t.levels[level];
        if (field == nullptr || field->seq == entry.seq || !(valueBefore(*field) > 0))
            continue;
        m_findings.add(FindingKind::PriceUnchanged, [&] {
            Finding found = finding(t, entry, nullptr, &present);
            found.field = field->item->name;
            found.present = found.before = found.after = textOf(*field->item, present);
            const int source = m_rules->sources()[level];
            const Field* from = source > 0 ? t.levels[static_cast<size_t>(source - 1)] : nullptr;
            if (from == nullptr)
                found.cause = UnchangedCause::Source;
            else if (valueBefore(*from) < m_definition->priceChangeLimit)
                found.cause = UnchangedCause::Limit;
            else if (m_definition->levels[level].coefficient == 1.0)
                found.cause = UnchangedCause::Coefficient;
            else
                found.cause = UnchangedCause::Rounding;
            return found;
        });
    }
}

}  // namespace vatchange
