#include <QtGlobal>

#ifdef Q_OS_WIN

#include <windows.h>
// after windows.h
#include <oleauto.h>
#include <taskschd.h>

#include <string>

#include "data/error.h"
#include "platform/schedule/system_scheduler.h"

namespace platform {

namespace {

constexpr wchar_t kFolder[] = L"\\Taksavaihe";
constexpr wchar_t kRoot[] = L"\\";

const QString kLogonRemedy = QStringLiteral(
    "Anna ajastuksessa Windows-tunnuksen salasana, tai pyydä ylläpitäjältä tunnukselle oikeus "
    "kirjautua erätyönä (Log on as a batch job).");

/// Releases a COM object.
template <class Interface>
class Com {
  public:
    Com() = default;
    ~Com() {
        if (m_object != nullptr)
            m_object->Release();
    }
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;
    Interface* operator->() const { return m_object; }
    Interface** out() { return &m_object; }

  private:
    Interface* m_object = nullptr;
};

class Text {
  public:
    explicit Text(const QString& text) : m_text(SysAllocString(text.toStdWString().c_str())) {}
    explicit Text(const wchar_t* text) : m_text(SysAllocString(text)) {}
    ~Text() { SysFreeString(m_text); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    // NOLINTNEXTLINE(google-explicit-constructor): passed like a BSTR
    operator BSTR() const { return m_text; }
    /// Valid as long as this object.
    VARIANT variant() const {
        VARIANT value;
        VariantInit(&value);
        value.vt = VT_BSTR;
        value.bstrVal = m_text;
        return value;
    }

  private:
    BSTR m_text;
};

VARIANT empty() {
    VARIANT value;
    VariantInit(&value);
    return value;
}

QString systemText(HRESULT result) {
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    const QString message = QString::fromWCharArray(text, static_cast<qsizetype>(length)).trimmed();
    LocalFree(text);
    return message;
}

void check(HRESULT result, const char* what, const QString& remedy = QString()) {
    if (SUCCEEDED(result))
        return;
    throw data::DataError(data::ErrorKind::Io, QStringLiteral("Task Scheduler"),
                          QLatin1String(what) + QStringLiteral(": ") + systemText(result),
                          static_cast<int>(result))
        .inFinnish(systemText(result),
                   remedy.isEmpty() ? QStringLiteral("Tarkista, että Windowsin Tehtävien ajoitus "
                                                     "-palvelu (Task Scheduler) on käynnissä.")
                                    : remedy);
}

bool isMissing(HRESULT result) {
    return result == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) ||
           result == HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND);
}

/// The account of this process, as DOMAIN\NAME.
QString account() {
    const QString domain = qEnvironmentVariable("USERDOMAIN");
    const QString name = qEnvironmentVariable("USERNAME");
    return domain.isEmpty() ? name : domain + u'\\' + name;
}

/// A connection to the service. COM stays initialised for the process: the toolkit uses it too.
class Connection {
  public:
    Connection() {
        const HRESULT started = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        if (started != RPC_E_CHANGED_MODE)
            check(started, "CoInitializeEx");
        check(CoCreateInstance(CLSID_TaskScheduler, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskService,
                               reinterpret_cast<void**>(m_service.out())),
              "CoCreateInstance");
        check(m_service->Connect(empty(), empty(), empty(), empty()), "Connect");
    }

    /// @return whether the program's folder of tasks exists; it is then open.
    bool openFolder() {
        const HRESULT result = m_service->GetFolder(Text(kFolder), m_folder.out());
        if (isMissing(result))
            return false;
        check(result, "GetFolder");
        return true;
    }
    void makeFolder() {
        if (openFolder())
            return;
        Com<ITaskFolder> root;
        check(m_service->GetFolder(Text(kRoot), root.out()), "GetFolder");
        check(root->CreateFolder(Text(kFolder), empty(), m_folder.out()), "CreateFolder");
    }
    const Com<ITaskFolder>& folder() const { return m_folder; }

  private:
    Com<ITaskService> m_service;
    Com<ITaskFolder> m_folder;
};

class WindowsScheduler : public TaskScheduler {
  public:
    QString problem() override {
        try {
            const Connection connection;
            return {};
        } catch (const data::DataError& e) {
            return QStringLiteral("Windowsin tehtävien ajoitusta ei voi käyttää. ") + e.finnish();
        }
    }

    void store(const ScheduledTask& task, const QString& password) override {
        Connection connection;
        connection.makeFolder();
        const QString user = account();
        const Text userText(user);
        const Text passwordText(password);
        const bool withPassword = !password.isEmpty();
        Com<IRegisteredTask> registered;
        check(connection.folder()->RegisterTask(
                  Text(task.id), Text(windowsTaskXml(task, user, withPassword)),
                  TASK_CREATE_OR_UPDATE, userText.variant(),
                  withPassword ? passwordText.variant() : empty(),
                  withPassword ? TASK_LOGON_PASSWORD : TASK_LOGON_S4U, empty(), registered.out()),
              "RegisterTask", kLogonRemedy);
    }

    bool remove(const QString& id) override {
        Connection connection;
        if (!connection.openFolder())
            return false;
        const HRESULT result = connection.folder()->DeleteTask(Text(id), 0);
        if (isMissing(result))
            return false;
        check(result, "DeleteTask",
              QStringLiteral("Poista tehtävä Windowsin Tehtävien ajoitus -ohjelmalla kansiosta "
                             "Taksavaihe."));
        return true;
    }

    bool exists(const QString& id) override {
        Connection connection;
        if (!connection.openFolder())
            return false;
        Com<IRegisteredTask> task;
        const HRESULT result = connection.folder()->GetTask(Text(id), task.out());
        if (isMissing(result))
            return false;
        check(result, "GetTask");
        return true;
    }

    bool takesPassword() const override { return true; }
};

}  // namespace

TaskScheduler& systemScheduler() {
    static WindowsScheduler scheduler;
    return scheduler;
}

}  // namespace platform

#endif
