#include "company/logs.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSysInfo>
#include <cstdio>
#include <utility>

#include "company/company.h"
#include "data/clock.h"
#include "data/windows1252.h"
#include "platform/append_file.h"

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <pwd.h>
#include <unistd.h>
#endif

namespace company {

namespace {

#ifdef Q_OS_WIN
constexpr char kLineEnd[] = "\r\n";
#else
constexpr char kLineEnd[] = "\n";
#endif

struct ErrorReport {
    std::function<void(const QString&)> handler;
    QString last;
};

ErrorReport& errorReport() {
    static ErrorReport report;
    return report;
}

QString onOneLine(const QString& message) {
    QString line;
    line.reserve(message.size());
    bool inBreak = false;
    for (const QChar c : message) {
        const bool isBreak = c == u'\r' || c == u'\n';
        if (!isBreak)
            line += c;
        else if (!inBreak)
            line += u' ';
        inBreak = isBreak;
    }
    return line;
}

/// Cached for a second: a run writes thousands of lines in one.
QString timeStamp() {
    static QDate day;
    static int second = -1;
    static QString text;
    const QDateTime now = data::Clock::now();
    const int present = now.time().msecsSinceStartOfDay() / 1000;
    if (present != second || now.date() != day) {
        day = now.date();
        second = present;
        text = now.toString(QStringLiteral("dd.MM.yyyy hh:mm:ss"));
    }
    return text;
}

QByteArray windows1252WithGaps(QString text) {
    QByteArray bytes;
    qsizetype bad = 0;
    while (!data::toWindows1252(text, bytes, &bad))
        text[bad] = u'?';
    return bytes;
}

LostLogLines& lostLines() {
    static LostLogLines lost;
    return lost;
}

/// Returns what failed; empty on success.
QString append(const QString& fileName, const QByteArray& line) {
    const QString problem = platform::appendToFile(fileName, line);
    if (problem.isEmpty()) {
        errorReport().last.clear();
        return {};
    }
    const QString text =
        QStringLiteral("Lokitiedostoon \"%1\" ei voi kirjoittaa: %2").arg(fileName, problem);
    reportLogError(text);
    return text;
}

QByteArray lineInUtf8(const QString& message) {
    static const QString computer = u'@' + computerName() + QStringLiteral("  ");
    return (timeStamp() + computer + onOneLine(message)).toUtf8() + kLineEnd;
}

}  // namespace

QString AlvMuutosLogName() {
    return logFolderFile(QStringLiteral("ALVMUUTOS.LOG"));
}

void WriteAlvMuutosLog(const QString& message) {
    const QString problem = append(AlvMuutosLogName(), lineInUtf8(message));
    if (problem.isEmpty())
        return;
    ++lostLines().count;
    lostLines().problem = problem;
}

qint64 changeLogSize() {
    return QFileInfo(AlvMuutosLogName()).size();
}

const LostLogLines& lostChangeLogLines() {
    return lostLines();
}

void writeLogLine(const QString& fileName, const QString& message) {
    append(fileName, lineInUtf8(message));
}

QString generalLogName() {
    return dataFolderFile(QStringLiteral("loki.dat"));
}

void writeGeneralLog(const QString& message) {
    const QString line = timeStamp() + QStringLiteral("  ") + userName() + u'@' + computerName() +
                         QStringLiteral("  ") + onOneLine(message);
    append(generalLogName(), windows1252WithGaps(line) + "\r\n");
}

QString computerName() {
#ifdef Q_OS_WIN
    wchar_t name[MAX_COMPUTERNAME_LENGTH + 1];
    DWORD length = MAX_COMPUTERNAME_LENGTH + 1;
    if (GetComputerNameW(name, &length))
        return QString::fromWCharArray(name, static_cast<qsizetype>(length));
#endif
    return QSysInfo::machineHostName();
}

QString userName() {
#ifdef Q_OS_WIN
    return qEnvironmentVariable("USERNAME");
#else
    const passwd* entry = ::getpwuid(::getuid());
    return entry ? QString::fromLocal8Bit(entry->pw_name) : QString::number(::getuid());
#endif
}

void setLogErrorReport(std::function<void(const QString& text)> report) {
    errorReport() = {std::move(report), {}};
}

void reportLogError(const QString& text) {
    ErrorReport& report = errorReport();
    if (std::exchange(report.last, text) == text)
        return;
    if (report.handler)
        report.handler(text);
    else
        std::fprintf(stderr, "%s\n", qUtf8Printable(text));
}

}  // namespace company
