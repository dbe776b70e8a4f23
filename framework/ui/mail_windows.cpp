#include "framework/ui/mail.h"

#ifdef Q_OS_WIN

#include <windows.h>

#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <string>

namespace framework {

namespace {

// Wide structures of the system's simple mail interface, as published; compilers' headers have only
// the narrow ones.
struct WideFile {
    ULONG reserved = 0;
    ULONG flags = 0;
    ULONG position = 0;
    wchar_t* path = nullptr;
    wchar_t* name = nullptr;
    void* type = nullptr;
};

struct WideMessage {
    ULONG reserved = 0;
    wchar_t* subject = nullptr;
    wchar_t* text = nullptr;
    wchar_t* type = nullptr;
    wchar_t* received = nullptr;
    wchar_t* conversation = nullptr;
    ULONG flags = 0;
    void* originator = nullptr;
    ULONG recipientCount = 0;
    void* recipients = nullptr;
    ULONG fileCount = 0;
    WideFile* files = nullptr;
};

using SendMail = ULONG(WINAPI*)(ULONG_PTR session, ULONG_PTR window, WideMessage* message,
                                ULONG flags, ULONG reserved);

constexpr ULONG kLogonWindow = 0x1;
constexpr ULONG kMessageWindow = 0x8;
constexpr ULONG kSuccess = 0;
constexpr ULONG kUserCancelled = 1;
constexpr ULONG kNotWithinText = 0xFFFFFFFF;

}  // namespace

// Resolved at run time: not every machine has a mail program behind the interface. The wide form
// exists since Windows 8.
Desktop::Outcome Desktop::sendThroughSystem(const QString& subject, const QString& text,
                                            const QString& attachment) {
    QLibrary library(QStringLiteral("mapi32"));
    const auto send = reinterpret_cast<SendMail>(library.resolve("MAPISendMailW"));
    if (send == nullptr)
        return Outcome::NotThere;

    std::wstring subjectText = subject.toStdWString();
    std::wstring bodyText = text.toStdWString();
    std::wstring path = QDir::toNativeSeparators(attachment).toStdWString();
    std::wstring name = QFileInfo(attachment).fileName().toStdWString();
    WideFile file;
    file.position = kNotWithinText;
    file.path = path.data();
    file.name = name.data();
    WideMessage message;
    message.subject = subjectText.data();
    message.text = bodyText.data();
    message.fileCount = 1;
    message.files = &file;
    const ULONG answer = send(0, 0, &message, kMessageWindow | kLogonWindow, 0);
    return answer == kSuccess || answer == kUserCancelled ? Outcome::Done : Outcome::Failed;
}

}  // namespace framework

#endif
