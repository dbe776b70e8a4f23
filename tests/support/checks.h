#pragma once

#include <gtest/gtest.h>

#include <QString>

#include "data/error.h"

#ifndef Q_OS_WIN
#include <sys/wait.h>
#include <unistd.h>
#endif

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

#ifndef Q_OS_WIN
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
