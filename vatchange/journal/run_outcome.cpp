#include "vatchange/journal/run_outcome.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>

namespace vatchange {

namespace {

const QString kStopped = QStringLiteral("stopped");
const QString kFailed = QStringLiteral("failed");
const QString kPassedOver = QStringLiteral("passedOver");
const QString kOverLimit = QStringLiteral("overLimit");
const QString kLimitedUnderLock = QStringLiteral("limitedUnderLock");
const QString kFailures = QStringLiteral("failures");

QCborArray arrayOf(const std::set<QString>& texts) {
    QCborArray array;
    for (const QString& text : texts)
        array.append(text);
    return array;
}

std::set<QString> textsOf(const QCborValue& value) {
    std::set<QString> texts;
    for (const QCborValue& text : value.toArray())
        texts.insert(text.toString());
    return texts;
}

}  // namespace

QByteArray outcomeNote(const RunOutcome& outcome) {
    const QCborMap map{{kStopped, outcome.stopped},
                       {kFailed, arrayOf(outcome.failedTables)},
                       {kPassedOver, arrayOf(outcome.passedOver)},
                       {kOverLimit, arrayOf(outcome.overLimit)},
                       {kLimitedUnderLock, outcome.limitedUnderLock},
                       {kFailures, QCborArray::fromStringList(outcome.failures)}};
    return map.toCborValue().toCbor();
}

RunOutcome outcomeOfNote(const QByteArray& note) {
    const QCborMap map = QCborValue::fromCbor(note).toMap();
    RunOutcome outcome;
    outcome.stopped = map[kStopped].toBool();
    outcome.failedTables = textsOf(map[kFailed]);
    outcome.passedOver = textsOf(map[kPassedOver]);
    outcome.overLimit = textsOf(map[kOverLimit]);
    outcome.limitedUnderLock = map[kLimitedUnderLock].toBool();
    const QCborArray failures = map[kFailures].toArray();
    for (const QCborValue& failure : failures)
        outcome.failures += failure.toString();
    return outcome;
}

}  // namespace vatchange
