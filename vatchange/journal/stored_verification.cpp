#include "vatchange/journal/stored_verification.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>

#include "vatchange/journal/verification_text.h"

namespace vatchange {

namespace {

const QString kNote = QStringLiteral("verification");
const QString kWhen = QStringLiteral("when");
const QString kHolds = QStringLiteral("holds");
const QString kLines = QStringLiteral("lines");
const QString kRecords = QStringLiteral("records");
const QString kEmpty = QStringLiteral("empty");
const QString kTimeFormat = QStringLiteral("yyyy-MM-dd hh:mm:ss");

}  // namespace

void storeVerification(data::RunJournal& journal, const Verification& verification,
                       const QDateTime& when) {
    QCborArray lines;
    for (const QString& line : verificationTextFinnish(verification))
        lines.append(line);
    QCborArray records;
    for (const TableRecords& table : verification.records)
        records.append(QCborArray{table.table, table.records});
    const QCborMap map{{kWhen, when.toString(kTimeFormat)},
                       {kHolds, verification.holds()},
                       {kLines, lines},
                       {kRecords, records},
                       {kEmpty, verification.count(FindingKind::EmptyVat0) +
                                    verification.count(FindingKind::NotPositive)}};
    journal.setNote(verification.run, kNote, map.toCborValue().toCbor());
}

std::optional<StoredVerification> storedVerification(data::RunJournal& journal, qint64 run) {
    const std::optional<QByteArray> note = journal.note(run, kNote);
    if (!note)
        return std::nullopt;
    const QCborMap map = QCborValue::fromCbor(*note).toMap();
    StoredVerification stored;
    stored.when = QDateTime::fromString(map[kWhen].toString(), kTimeFormat);
    stored.holds = map[kHolds].toBool();
    stored.empty = map[kEmpty].toInteger();
    const QCborArray lines = map[kLines].toArray();
    for (const auto& line : lines)
        stored.lines += line.toString();
    const QCborArray records = map[kRecords].toArray();
    for (const auto& value : records) {
        const QCborArray pair = value.toArray();
        stored.records.push_back({pair.at(0).toString(), pair.at(1).toInteger()});
    }
    return stored;
}

std::vector<ChangedRecords> recordsOfRun(data::RunJournal& journal, qint64 run) {
    if (std::optional<StoredVerification> stored = storedVerification(journal, run))
        return std::move(stored->records);
    return changedRecords(journal, run);
}

}  // namespace vatchange
