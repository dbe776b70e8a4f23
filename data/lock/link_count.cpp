#include "data/lock/link_count.h"

#include "data/system_path.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <sys/stat.h>

#include <QFile>
#endif

namespace data {

#ifdef _WIN32

std::uint64_t linkCount(const QString& fileName) {
    // No access is asked for, so that a file which another program holds can be looked at too.
    const HANDLE file =
        ::CreateFileW(reinterpret_cast<const wchar_t*>(systemPath(fileName).utf16()), 0,
                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return 0;
    BY_HANDLE_FILE_INFORMATION information = {};
    const bool known = ::GetFileInformationByHandle(file, &information) != 0;
    ::CloseHandle(file);
    return known ? information.nNumberOfLinks : 0;
}

#else

std::uint64_t linkCount(const QString& fileName) {
    struct stat status = {};
    return ::stat(QFile::encodeName(fileName).constData(), &status) == 0 ? status.st_nlink : 0;
}

#endif

}  // namespace data
