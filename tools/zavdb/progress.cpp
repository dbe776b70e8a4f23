#include "tools/zavdb/progress.h"

#include <QTextStream>
#include <algorithm>
#include <cstdio>
#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace tools {

namespace {

constexpr std::chrono::milliseconds kInterval{250};

bool isTerminal() {
#ifdef Q_OS_WIN
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(fileno(stderr)) != 0;
#endif
}

}  // namespace

Progress::Progress() : m_terminal(isTerminal()), m_next(std::chrono::steady_clock::now()) {}

Progress::~Progress() {
    if (m_width > 0)
        QTextStream(stderr) << '\r' << QString(m_width, u' ') << '\r';
}

void Progress::show(const QString& what, qint64 done, qint64 total) {
    if (!m_terminal)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (now < m_next)
        return;
    m_next = now + kInterval;
    QString line = QStringLiteral("%1: %2").arg(what).arg(done);
    if (total > 0)
        line += QStringLiteral(" of %1").arg(total);
    QTextStream(stderr) << '\r' << line.leftJustified(m_width);
    m_width = std::max(m_width, line.size());
}

}  // namespace tools
