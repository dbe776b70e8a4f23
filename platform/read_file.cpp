#include "platform/read_file.h"

#include <QFile>
#include <algorithm>
#include <array>

#ifdef Q_OS_WIN
#include <qt_windows.h>

#include "data/system_path.h"
#else
#include <sys/stat.h>

#include <cerrno>
#endif

namespace platform {

namespace {

struct Cause {
    int code;
    const char16_t* finnish;
};

#ifdef Q_OS_WIN
constexpr std::array kCauses = {
    Cause{ERROR_FILE_NOT_FOUND, u"tiedostoa ei ole"},
    Cause{ERROR_PATH_NOT_FOUND, u"kansiota ei ole"},
    Cause{ERROR_ACCESS_DENIED, u"käyttöoikeus puuttuu, tai samanniminen kansio on tiellä"},
    Cause{ERROR_SHARING_VIOLATION, u"tiedosto on toisen ohjelman käytössä"},
    Cause{ERROR_WRITE_PROTECT, u"levy on kirjoitussuojattu"},
    Cause{ERROR_DISK_FULL, u"levy on täynnä"},
    Cause{ERROR_HANDLE_DISK_FULL, u"levy on täynnä"},
    Cause{ERROR_BAD_NETPATH, u"verkkokansioon ei saada yhteyttä"}};
constexpr int kAccessDenied = ERROR_ACCESS_DENIED;
#else
constexpr std::array kCauses = {Cause{ENOENT, u"tiedostoa tai sen kansiota ei ole"},
                                Cause{ENOTDIR, u"polussa on tiedosto kansion paikalla"},
                                Cause{EACCES, u"käyttöoikeus puuttuu"},
                                Cause{EPERM, u"toimintoa ei sallita"},
                                Cause{EISDIR, u"samanniminen kansio on tiellä"},
                                Cause{EROFS, u"levy on kirjoitussuojattu"},
                                Cause{ENOSPC, u"levy on täynnä"},
                                Cause{EDQUOT, u"levykiintiö on täynnä"},
                                Cause{EFBIG, u"tiedosto on suurin sallittu"},
                                Cause{EMFILE, u"liian monta avointa tiedostoa"},
                                Cause{ENXIO, u"putkella tai laitteella ei ole lukijaa"},
                                Cause{EIO, u"levy tai verkkolevy ei vastaa oikein"},
                                Cause{ESTALE, u"yhteys verkkolevyyn on katkennut"}};
constexpr int kAccessDenied = EACCES;
#endif

[[noreturn]] void fail(const QString& fileName, int code) {
    const data::DataError error(data::ErrorKind::Io, fileName, qt_error_string(code));
    throw error.inFinnish(
        systemErrorFinnish(code),
        code == kAccessDenied
            ? QStringLiteral("Anna tälle käyttäjälle oikeus avata kansio ja lukea "
                             "tiedosto.")
            : QString());
}

enum class Found { Nothing, RegularFile, Other };

Found whatIsAt(const QString& fileName) {
#ifdef Q_OS_WIN
    const auto* path = reinterpret_cast<const wchar_t*>(data::systemPath(fileName).utf16());
    const DWORD attributes = GetFileAttributesW(path);
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        const DWORD special = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE;
        return (attributes & special) == 0 ? Found::RegularFile : Found::Other;
    }
    const DWORD code = GetLastError();
    if (code != ERROR_FILE_NOT_FOUND && code != ERROR_PATH_NOT_FOUND)
        fail(fileName, static_cast<int>(code));
#else
    struct stat status {};
    if (::stat(QFile::encodeName(fileName).constData(), &status) == 0)
        return S_ISREG(status.st_mode) ? Found::RegularFile : Found::Other;
    if (errno != ENOENT && errno != ENOTDIR)
        fail(fileName, errno);
#endif
    return Found::Nothing;
}

int lastError() {
#ifdef Q_OS_WIN
    return static_cast<int>(GetLastError());
#else
    return errno;
#endif
}

}  // namespace

std::optional<QByteArray> readRegularFile(const QString& fileName, qint64 most) {
    switch (whatIsAt(fileName)) {
        case Found::Nothing:
            return std::nullopt;
        case Found::RegularFile:
            break;
        case Found::Other:
            throw data::DataError(data::ErrorKind::Io, fileName,
                                  QStringLiteral("not a regular file"))
                .inFinnish(QStringLiteral("se ei ole tavallinen tiedosto, vaan kansio, putki tai "
                                          "laite"),
                           QStringLiteral("Poista se tai siirrä se muualle."));
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        fail(fileName, lastError());
    // read() allocates all that it may read, even for a small file
    QByteArray bytes = file.read(std::min<qint64>(file.size() + 1, most));
    if (file.error() != QFileDevice::NoError)
        throw data::DataError(data::ErrorKind::Io, fileName, file.errorString());
    return bytes;
}

QString systemErrorFinnish(int code) {
    const auto* cause = std::find_if(kCauses.begin(), kCauses.end(),
                                     [code](const Cause& known) { return known.code == code; });
    return cause == kCauses.end() ? qt_error_string(code) : QString::fromUtf16(cause->finnish);
}

data::DataError folderCannotBeMade(const QString& folder) {
    const data::DataError error(data::ErrorKind::Io, folder,
                                QStringLiteral("the folder cannot be made"));
    return error.inFinnish(QStringLiteral("kansiota ei voi luoda"),
                           QStringLiteral("Tarkista polku ja yläkansion käyttöoikeudet."));
}

}  // namespace platform
