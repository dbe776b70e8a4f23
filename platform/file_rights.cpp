#include "platform/file_rights.h"

#include <QtGlobal>

#ifndef Q_OS_WIN
#include <sys/stat.h>
#endif

namespace platform {

void denyWriteToOthers() {
#ifndef Q_OS_WIN
    ::umask(::umask(S_IWOTH) | S_IWOTH);
#endif
}

}  // namespace platform
