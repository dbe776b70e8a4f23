#include "vatchange/journal/rehearsal_note.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>

namespace vatchange {

namespace {

const QString kNote = QStringLiteral("rehearsal");
const QString kRehearsal = QStringLiteral("rehearsal");
const QString kSame = QStringLiteral("same");
const QString kDifferences = QStringLiteral("differences");
const QString kMore = QStringLiteral("more");
const QString kFirst = QStringLiteral("first");

}  // namespace

void storeComparison(data::RunJournal& journal, qint64 run, const RehearsalComparison& comparison) {
    QCborArray first;
    for (const RehearsalDifference& one : comparison.first)
        first.append(QCborArray{static_cast<int>(one.kind), one.table, one.record, one.key,
                                one.field, one.rehearsedBefore, one.rehearsedAfter, one.before,
                                one.after});
    journal.setNote(run, kNote,
                    QCborMap{{kRehearsal, comparison.rehearsal},
                             {kSame, comparison.same},
                             {kDifferences, comparison.differences},
                             {kMore, comparison.more},
                             {kFirst, first}}
                        .toCborValue()
                        .toCbor());
}

std::optional<RehearsalComparison> storedComparison(data::RunJournal& journal, qint64 run) {
    const std::optional<QByteArray> note = journal.note(run, kNote);
    if (!note)
        return std::nullopt;
    const QCborMap map = QCborValue::fromCbor(*note).toMap();
    RehearsalComparison comparison;
    comparison.rehearsal = map[kRehearsal].toString();
    comparison.same = map[kSame].toInteger();
    comparison.differences = map[kDifferences].toInteger();
    comparison.more = map[kMore].toBool();
    const QCborArray first = map[kFirst].toArray();
    for (const auto& value : first) {
        const QCborArray one = value.toArray();
        comparison.first.push_back({static_cast<RehearsalDifference::Kind>(one.at(0).toInteger()),
                                    one.at(1).toString(), one.at(2).toInteger(),
                                    one.at(3).toString(), one.at(4).toString(),
                                    one.at(5).toString(), one.at(6).toString(),
                                    one.at(7).toString(), one.at(8).toString()});
    }
    return comparison;
}

QString comparisonText(const RehearsalComparison& comparison) {
    if (comparison.differences == 0)
        return QStringLiteral("ajo muutti saman kuin koeajo %1").arg(comparison.rehearsal);
    return QStringLiteral("ajo poikkeaa koeajosta %1: eri tavalla muuttuneita kenttiä %2%3")
        .arg(comparison.rehearsal, comparison.more ? QStringLiteral("yli ") : QString(),
             QString::number(comparison.differences));
}

}  // namespace vatchange
