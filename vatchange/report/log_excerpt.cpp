#include "vatchange/report/log_excerpt.h"

#include <QFile>
#include <QFileInfo>
#include <deque>
#include <functional>

namespace vatchange {

namespace {

constexpr qsizetype kStampLength = 19;

/// When a line was written; invalid if it does not begin with a time.
QDateTime momentOf(const QByteArray& line) {
    return QDateTime::fromString(QString::fromLatin1(line.left(kStampLength)),
                                 QStringLiteral("dd.MM.yyyy hh:mm:ss"));
}

/// Opens a log. @return why that failed, in Finnish; else empty.
QString openLog(QFile& file) {
    if (file.exists() && !QFileInfo(file).isFile())  // reading a pipe could wait for ever
        return QStringLiteral("se ei ole tavallinen tiedosto");
    return file.open(QIODevice::ReadOnly) ? QString() : file.errorString();
}

/// Collects the lines of an open log up to `to` that `wanted` takes.
void collect(QFile& file, qint64 to, const std::function<bool(const QByteArray&)>& wanted,
             LogExcerpt& excerpt) {
    std::deque<QByteArray> last;
    while (file.pos() < to && !file.atEnd()) {
        const QByteArray line = file.readLine();
        if (!wanted(line))
            continue;
        if (excerpt.first.size() < LogExcerpt::kFirstLines) {
            excerpt.first += QString::fromUtf8(line).trimmed().left(LogExcerpt::kLineLength);
            continue;
        }
        last.push_back(line);
        if (last.size() > static_cast<std::size_t>(LogExcerpt::kLastLines)) {
            last.pop_front();
            ++excerpt.leftOut;
        }
    }
    for (const QByteArray& line : last)
        excerpt.last += QString::fromUtf8(line).trimmed().left(LogExcerpt::kLineLength);
}

/// Lines without a time belong to the line before them.
LogExcerpt linesBetween(const QString& logName, const QDateTime& from, const QDateTime& to) {
    LogExcerpt excerpt;
    QFile file(logName);
    excerpt.problem = openLog(file);
    if (!excerpt.problem.isEmpty())
        return excerpt;
    bool inside = false;
    collect(
        file, file.size(),
        [&](const QByteArray& line) {
            const QDateTime moment = momentOf(line);
            if (moment.isValid())
                inside = moment >= from && moment <= to;
            return inside;
        },
        excerpt);
    return excerpt;
}

/// Where the next attempt of any run begins in the log; -1: none does.
qint64 nextAttemptAt(data::RunJournal& journal, qint64 from) {
    qint64 next = -1;
    for (const data::JournalRun& run : journal.runs()) {
        for (const RunAttempt& attempt : runAttempts(journal, run)) {
            if (attempt.logFrom > from && (next < 0 || attempt.logFrom < next))
                next = attempt.logFrom;
        }
    }
    return next;
}

}  // namespace

LogExcerpt readLog(const QString& logName, qint64 from, qint64 to) {
    LogExcerpt excerpt;
    QFile file(logName);
    excerpt.problem = openLog(file);
    if (!excerpt.problem.isEmpty())
        return excerpt;
    const qint64 end = to < 0 ? file.size() : to;
    if (file.size() < end || !file.seek(from)) {
        excerpt.problem = QStringLiteral("lokia on lyhennetty ajon jälkeen");
        return excerpt;
    }
    collect(
        file, end, [](const QByteArray&) { return true; }, excerpt);
    return excerpt;
}

LogExcerpt logOfAttempt(data::RunJournal& journal, const QString& logName,
                        const RunAttempt& attempt) {
    if (attempt.logFrom >= 0)
        return readLog(
            logName, attempt.logFrom,
            attempt.logTo >= 0 ? attempt.logTo : nextAttemptAt(journal, attempt.logFrom));
    if (attempt.ended.isValid())
        return linesBetween(logName, attempt.started, attempt.ended);
    LogExcerpt unknown;
    unknown.problem = QStringLiteral("ajon rivejä siinä ei tunneta");
    return unknown;
}

}  // namespace vatchange
