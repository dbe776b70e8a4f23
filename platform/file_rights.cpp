#include "platform/file_rights.h"

#include <QtGlobal>

#ifndef Q_OS_WIN
#include <sys/stat.h>

#include <csignal>
#endif

namespace platform {

void denyWriteToOthers() {
#ifndef Q_OS_WIN
    ::umask(::umask(S_IWOTH) | S_IWOTH);
#endif
}

void reportFileSizeLimit() {
#ifndef Q_OS_WIN
    std::signal(SIGXFSZ, SIG_IGN);
#endif
}

}  // namespace platform
