#include "platform/append_file.h"

#include <QFile>

#include "platform/read_file.h"

#ifdef Q_OS_WIN
#include <qt_windows.h>

#include "data/system_path.h"
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace platform {

// Not QFile: on Windows it seeks to the end before writing, so that lines of two programs could
// overlap, and it takes 1.6 times as long (a run may write one line per product).

#ifdef Q_OS_WIN

QString appendToFile(const QString& fileName, const QByteArray& bytes) {
    const HANDLE file =
        CreateFileW(reinterpret_cast<const wchar_t*>(data::systemPath(fileName).utf16()),
                    FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return systemErrorFinnish(static_cast<int>(GetLastError()));
    DWORD written = 0;
    QString problem;
    if (!WriteFile(file, bytes.constData(), static_cast<DWORD>(bytes.size()), &written, nullptr))
        problem = systemErrorFinnish(static_cast<int>(GetLastError()));
    else if (written != static_cast<DWORD>(bytes.size()))
        problem = systemErrorFinnish(ERROR_DISK_FULL);
    CloseHandle(file);
    return problem;
}

#else

QString appendToFile(const QString& fileName, const QByteArray& bytes) {
    const QByteArray path = QFile::encodeName(fileName);
    // A pipe would wait for a reader, and a reader that leaves would end the program.
    struct stat status {};
    if (::stat(path.constData(), &status) == 0 && S_ISFIFO(status.st_mode))
        return QStringLiteral("se on putki eikä tiedosto");
    const int file = ::open(path.constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0664);
    if (file < 0)
        return systemErrorFinnish(errno);
    // After a partial write (full disk) the next line starts on a new line.
    static QString cutOff;
    const QByteArray text = fileName == cutOff ? '\n' + bytes : bytes;
    ssize_t written = 0;
    do {
        written = ::write(file, text.constData(), static_cast<size_t>(text.size()));
    } while (written < 0 && errno == EINTR);
    QString problem;
    if (written < 0)
        problem = systemErrorFinnish(errno);
    else if (written != text.size())
        problem = systemErrorFinnish(ENOSPC);
    if (written > 0 && written < text.size())
        cutOff = fileName;
    else if (written > 0 && fileName == cutOff)
        cutOff.clear();
    if (::close(file) != 0 && problem.isEmpty())
        problem = systemErrorFinnish(errno);
    return problem;
}

#endif

}  // namespace platform
