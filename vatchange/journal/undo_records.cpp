#include "vatchange/journal/undo_records.h"

#include <algorithm>

#include "data/clock.h"
#include "data/record/record_codec.h"
#include "vatchange/journal/record_hold.h"

namespace vatchange {

namespace {

using data::Operation;
using Reason = UndoConflict::Reason;

bool isTouched(const NetChange& change, const FieldPlace& place) {
    return std::any_of(change.changes.begin(), change.changes.end(),
                       [&place](const data::ByteChange& part) {
                           return part.offset < place.offset + place.length &&
                                  place.offset < part.offset + part.before.size();
                       });
}

bool isDate(const UndoTable& table, const FieldPlace& place) {
    return !place.fields.empty() &&
           std::all_of(place.fields.begin(), place.fields.end(), [&table](int field) {
               return std::find(table.changeDates.begin(), table.changeDates.end(), field) !=
                      table.changeDates.end();
           });
}

void addConflicts(const UndoTable& table, const NetChange& change, const FieldPlace& place,
                  const QByteArray& after, const QByteArray& present,
                  std::vector<UndoConflict>& conflicts) {
    for (const int field : place.fields) {
        const QString left = fieldText(table.layout(), field, after);
        const QString found = fieldText(table.layout(), field, present);
        if (left != found)
            conflicts.push_back({Reason::Changed, table.stored.name, table.key(change.key),
                                 table.layout().field(field).name, left, found});
    }
}

UndoConflict wholeRecord(Reason reason, const UndoTable& table, const NetChange& change) {
    return {reason, table.stored.name, table.key(change.key), {}, {}, {}};
}

}  // namespace

UndoRecords::UndoRecords(data::Database& database, const UndoOptions& options, UndoPorts& ports,
                         UndoResult& result)
    : m_options(options), m_result(result), m_signals(database, ports) {}

UndoRecords::Judged UndoRecords::judge(const UndoTable& table, const NetChange& change,
                                       const QByteArray& present) const {
    const int length = table.layout().recordLength();
    const QByteArray before = recordBefore(change, length);
    const QByteArray after = recordAfter(change, length);
    const bool inserted = change.operation == Operation::Insert;
    const bool isMark = table.isRunMark(change.key);
    Judged judged{present, true, {}};
    for (const FieldPlace& place : table.places) {
        if (!inserted && (!isTouched(change, place) || place.equal(before, after)))
            continue;
        const bool date = isDate(table, place);
        if (isMark || sameValue(table.layout(), place, present, after)) {
            if (!date || m_options.scope.exact)
                place.copy(before, judged.restored);
        } else if (!date && !place.fields.empty()) {
            judged.intact = false;
            if (!table.consumed)
                addConflicts(table, change, place, after, present, judged.conflicts);
        }
    }
    return judged;
}

void UndoRecords::takeBack(UndoTable& table, const NetChange& change, const Tell& tell) {
    if (change.operation == Operation::Delete) {
        putBack(table, change, tell);
        return;
    }
    const std::optional<data::StoredRecord> found = table.find(change);
    if (found && m_options.dryRun) {
        takeBackExisting(table, change, found->id, found->bytes, tell);
        return;
    }
    if (found) {
        const RecordHold hold(*table.file, found->id);
        if (!hold.held())
            throw data::DataError(data::ErrorKind::Locked, table.stored.name,
                                  table.key(change.key));
        if (hold.exists()) {
            takeBackExisting(table, change, found->id, hold.bytes(), tell);
            return;
        }
    }
    takeBackGone(table, change, tell);
}

void UndoRecords::takeBackExisting(UndoTable& table, const NetChange& change, data::RecordId record,
                                   const QByteArray& present, const Tell& tell) {
    Judged judged = judge(table, change, present);
    const bool consumed = table.consumed && (!judged.intact || table.isPrintedLabel(present));
    if (consumed && !m_options.scope.exact) {
        repeatSignal(table, change);
        return;
    }
    if (change.operation == Operation::Insert) {
        if (!judged.intact && judged.conflicts.empty() && !table.consumed)
            judged.conflicts.push_back(wholeRecord(Reason::Changed, table, change));
        tell(judged.conflicts);
        if (!judged.intact)
            return;
        ++m_result.removed;
        if (!m_options.dryRun)
            table.file->remove(record);
        return;
    }
    tell(judged.conflicts);
    if (judged.restored == present)
        return;
    if (!m_options.scope.exact)
        setDates(table, judged.restored);
    ++m_result.restored;
    if (!m_options.dryRun)
        table.file->update(record, judged.restored);
}

void UndoRecords::takeBackGone(UndoTable& table, const NetChange& change, const Tell& tell) {
    if (table.consumed) {
        if (!m_options.scope.exact)
            repeatSignal(table, change);
    } else if (change.operation == Operation::Update && !table.isRunMark(change.key)) {
        tell({wholeRecord(Reason::Gone, table, change)});
    }
}

void UndoRecords::putBack(UndoTable& table, const NetChange& change, const Tell& tell) {
    QByteArray record = recordBefore(change, table.layout().recordLength());
    if (!m_options.scope.exact)
        setDates(table, record);
    const bool isMark = table.isRunMark(change.key);
    std::optional<data::RecordId> there;
    if (isMark || table.isLabel() || table.hasUniqueKey()) {
        const auto found = table.file->seek(0, data::SeekOp::Equal, table.keyValues(change.key), 1);
        if (!found.empty())
            there = found.front().id;
    }
    if (there && table.hasUniqueKey()) {
        tell({wholeRecord(Reason::Exists, table, change)});
        return;
    }
    ++m_result.putBack;
    if (m_options.dryRun)
        return;
    // neither a second mark nor a second label of a product
    if (there && isMark)
        table.file->update(*there, record);
    else if (there && !m_options.scope.exact)
        repeatSignal(table, change);
    else
        table.file->insert(record);
}

void UndoRecords::setDates(const UndoTable& table, QByteArray& record) const {
    const QDateTime exact = data::Clock::now();
    const QTime time(exact.time().hour(), exact.time().minute(), exact.time().second());
    const QDateTime now(exact.date(), time);
    for (const int index : table.changeDates) {
        const data::TFieldCacheItem& field = table.layout().field(index);
        data::Value value = now;
        if (field.kind() == data::Kind::Date)
            value = now.date();
        else if (field.kind() == data::Kind::Time)
            value = time;
        data::writeValue(field, reinterpret_cast<uchar*>(record.data()), value, table.stored.name);
    }
}

void UndoRecords::repeatSignal(UndoTable& table, const NetChange& change) {
    if (!m_options.dryRun)
        m_signals.repeat(table, change);
}

}  // namespace vatchange
