#pragma once

#include <gtest/gtest.h>

#include <QStringList>

#include "data/error.h"

#ifndef Q_OS_WIN
#ifdef Q_OS_LINUX
#include <sys/fsuid.h>
#endif
#include <sys/wait.h>
#include <unistd.h>
#endif

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace test {

inline QString str(const char* utf8) {
    return QString::fromUtf8(utf8);
}

/// The error that a call throws; fails the test if it throws none.
template <typename Call>
data::DataError thrownBy(Call&& call) {
    try {
        call();
    } catch (const data::DataError& error) {
        return error;
    }
    ADD_FAILURE() << "no error";
    return data::DataError(data::ErrorKind::Io, {}, {});
}

/// The lines that a call traces.
template <typename Call>
QStringList tracedBy(Call&& call) {
    static QStringList lines;
    lines.clear();
    const QtMessageHandler previous = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& line) { lines += line; });
    call();
    qInstallMessageHandler(previous);
    return lines;
}

#ifndef Q_OS_WIN
/// During its life file permissions hold for this thread also when root runs the tests.
class WithoutPrivileges {
  public:
#ifdef Q_OS_LINUX
    WithoutPrivileges() {
        ::setfsuid(::geteuid() == 0 ? kNobody : ::geteuid());
    }
    ~WithoutPrivileges() {
        ::setfsuid(::geteuid());
    }
#else
    WithoutPrivileges() = default;
#endif
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;

  private:
    static constexpr uid_t kNobody = 65534;
};

/// Makes the call `count` times in each of two concurrent processes, with the process's name and a
/// number.
template <typename Call>
void inTwoProcesses(int count, Call&& call) {
    pid_t children[2];
    for (int i = 0; i < 2; ++i) {
        children[i] = fork();
        ASSERT_GE(children[i], 0);
        if (children[i] == 0) {
            for (int n = 0; n < count; ++n)
                call(str(i == 0 ? "A" : "B"), n);
            _exit(0);
        }
    }
    for (const pid_t child : children)
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
}
#endif

}  // namespace test
