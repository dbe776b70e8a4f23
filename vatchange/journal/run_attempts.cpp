#include "vatchange/journal/run_attempts.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>

namespace vatchange {

namespace {

const QString kStarted = QStringLiteral("started");
const QString kEnded = QStringLiteral("ended");
const QString kUser = QStringLiteral("user");
const QString kComputer = QStringLiteral("computer");
const QString kLogFrom = QStringLiteral("logFrom");
const QString kLogTo = QStringLiteral("logTo");
const QString kLost = QStringLiteral("lost");
const QString kBackupFile = QStringLiteral("backupFile");
const QString kBackupWhen = QStringLiteral("backupWhen");

// As text without a zone: a run's times are local ones, whatever the reader's zone.
QString timeText(const QDateTime& time) {
    return time.isValid() ? time.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")) : QString();
}

QDateTime timeOf(const QCborValue& value) {
    return QDateTime::fromString(value.toString(), QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

std::vector<RunAttempt> storedAttempts(data::RunJournal& journal, qint64 run) {
    std::vector<RunAttempt> attempts;
    const QCborArray array =
        QCborValue::fromCbor(journal.note(run, kAttemptsNote).value_or(QByteArray())).toArray();
    for (const auto& value : array) {
        const QCborMap map = value.toMap();
        attempts.push_back({timeOf(map[kStarted]), timeOf(map[kEnded]), map[kUser].toString(),
                            map[kComputer].toString(), map[kLogFrom].toInteger(-1),
                            map[kLogTo].toInteger(-1), map[kLost].toInteger(),
                            map[kBackupFile].toString(), timeOf(map[kBackupWhen])});
    }
    return attempts;
}

}  // namespace

QByteArray attemptsNote(const std::vector<RunAttempt>& attempts) {
    QCborArray array;
    for (const RunAttempt& attempt : attempts)
        array.append(QCborMap{{kStarted, timeText(attempt.started)},
                              {kEnded, timeText(attempt.ended)},
                              {kUser, attempt.user},
                              {kComputer, attempt.computer},
                              {kLogFrom, attempt.logFrom},
                              {kLogTo, attempt.logTo},
                              {kLost, attempt.lostLogLines},
                              {kBackupFile, attempt.backupFile},
                              {kBackupWhen, timeText(attempt.backupWhen)}});
    return array.toCborValue().toCbor();
}

std::vector<RunAttempt> runAttempts(data::RunJournal& journal, const data::JournalRun& run) {
    std::vector<RunAttempt> attempts = storedAttempts(journal, run.number);
    if (attempts.empty())
        attempts.push_back({run.started, run.ended, run.user, run.computer});
    return attempts;
}

void beginAttempt(data::RunJournal& journal, qint64 run, const RunAttempt& attempt) {
    std::vector<RunAttempt> attempts = storedAttempts(journal, run);
    attempts.push_back(attempt);
    journal.setNote(run, kAttemptsNote, attemptsNote(attempts));
}

void endAttempt(data::RunJournal& journal, qint64 run, const RunAttempt& end) {
    std::vector<RunAttempt> attempts = storedAttempts(journal, run);
    if (attempts.empty())
        return;
    RunAttempt& last = attempts.back();
    last.ended = end.ended;
    last.logTo = end.logTo;
    last.lostLogLines = end.lostLogLines;
    journal.setNote(run, kAttemptsNote, attemptsNote(attempts));
}

}  // namespace vatchange
