#include "platform/settings_store.h"

#include <utility>

#include "data/error.h"
#include "platform/user_settings.h"

#ifdef Q_OS_WIN
#include <QSettings>
#else
#include <QDir>
#include <QFileInfo>
#include <chrono>

#include "platform/ini_change.h"
#include "platform/read_file.h"
#include "platform/settings_text.h"
#include "platform/text_order.h"
#endif

namespace platform {

#ifdef Q_OS_WIN

struct SettingsStore::Data {
    explicit Data(const QString& key, QSettings::Format format) : settings(key, format) {}
    QSettings settings;
};

std::vector<SettingsStore> SettingsStore::openAll(Use /*use*/) {
    // The user's part is shared by 32-bit and 64-bit programs. The machine's part is not: 32-bit
    // programs register for all users in a view of their own.
    const QString user = QStringLiteral("HKEY_CURRENT_USER\\Software\\Taksavaihe");
    const QString machine = QStringLiteral("HKEY_LOCAL_MACHINE\\Software\\Taksavaihe");
    std::vector<SettingsStore> stores;
    for (const auto& [key, format] :
         {std::pair(user, QSettings::NativeFormat), std::pair(machine, QSettings::Registry64Format),
          std::pair(machine, QSettings::Registry32Format)})
        stores.push_back(SettingsStore(std::make_unique<Data>(key, format)));
    return stores;
}

QStringList SettingsStore::groupsIn(const QString& group) const {
    m_data->settings.beginGroup(group);
    QStringList names = m_data->settings.childGroups();
    m_data->settings.endGroup();
    return names;
}

std::optional<QString> SettingsStore::value(const QString& group, const QString& name) const {
    const QString path = group + u'/' + name;
    if (!m_data->settings.contains(path))
        return std::nullopt;
    return m_data->settings.value(path).toString();
}

void SettingsStore::add(const QString& group, const QString& name, const QString& value) {
    m_data->settings.setValue(group + u'/' + name, value);
}

void SettingsStore::removeGroup(const QString& group) {
    m_data->settings.remove(group);
}

void SettingsStore::save() {
    m_data->settings.sync();
    if (m_data->settings.status() != QSettings::NoError)
        throw data::DataError(data::ErrorKind::Io, m_data->settings.fileName(),
                              QStringLiteral("the settings cannot be read or written"))
            .inFinnish(QStringLiteral("asetuksia ei voi lukea tai kirjoittaa"));
}

#else

namespace {

// A change takes some milliseconds; a script may queue many.
constexpr std::chrono::milliseconds kLockWait{30000};

/// Accessible by the user only, like the file in it.
void makeFolder(const QString& folder) {
    if (QFileInfo(folder).isDir())
        return;
    const QString parent = QFileInfo(folder).path();
    if (!(QDir().mkpath(parent) &&
          QDir().mkdir(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner)) &&
        !QFileInfo(folder).isDir())
        throw folderCannotBeMade(folder);
}

/// Section and key form the setting's path; the section "General" is no group.
QString pathOf(const IniFile::Entry& entry) {
    const bool inGroup =
        !entry.section.isEmpty() && entry.section.compare(u"General", Qt::CaseInsensitive) != 0;
    return (inGroup ? plainPath(entry.section) + u'/' : QString()) + plainPath(entry.key);
}

/// The part of the path after "group/"; nothing if it is not in the group.
std::optional<QString> behind(const QString& group, const QString& path) {
    const qsizetype size = group.size();
    const qsizetype top = group.contains(u'/') ? group.indexOf(u'/') : size;
    if (path.size() <= size || path.at(size) != u'/' ||
        !sameIgnoringAsciiCase(path.first(top), group.first(top)) ||
        path.sliced(top, size - top) != group.sliced(top))
        return std::nullopt;
    return path.sliced(size + 1);
}

}  // namespace

struct SettingsStore::Data {
    QString fileName;
    std::unique_ptr<QLockFile> lock;  // null for reading
    IniFile file;
};

std::vector<SettingsStore> SettingsStore::openAll(Use use) {
    auto data = std::make_unique<Data>();
    data->fileName = userSettingsFolder() + QStringLiteral("/aliases.ini");
    if (use == Use::Write) {
        makeFolder(userSettingsFolder());
        data->lock = lockForChange(data->fileName, kLockWait);
    }
    data->file = IniFile::read(data->fileName);
    if (const int line = data->file.malformedLine(); line > 0)
        throw data::DataError(data::ErrorKind::Damaged, data->fileName,
                              QStringLiteral("line %1 is no setting").arg(line))
            .inFinnish(
                QStringLiteral("rivi %1 ei ole asetus").arg(line),
                QStringLiteral("Korjaa tai poista rivi; tiedostossa on yritysten luettelo."));
    std::vector<SettingsStore> stores;
    stores.push_back(SettingsStore(std::move(data)));
    return stores;
}

QStringList SettingsStore::groupsIn(const QString& group) const {
    QStringList names;
    for (const IniFile::Entry& entry : m_data->file.entries()) {
        const QString rest = behind(group, pathOf(entry)).value_or(QString());
        const QString name = rest.left(rest.indexOf(u'/'));
        if (rest.contains(u'/') && !names.contains(name))
            names.append(name);
    }
    return names;
}

std::optional<QString> SettingsStore::value(const QString& group, const QString& name) const {
    std::optional<QString> found;  // the last of duplicates
    for (const IniFile::Entry& entry : m_data->file.entries()) {
        const std::optional<QString> rest = behind(group, pathOf(entry));
        if (rest && sameIgnoringAsciiCase(*rest, name))
            found = plainValue(entry.text);
    }
    return found;
}

void SettingsStore::add(const QString& group, const QString& name, const QString& value) {
    const QString path = group + u'/' + name;
    const qsizetype top = path.indexOf(u'/');
    m_data->file.add({path.first(top), writtenPath(path.sliced(top + 1)), writtenValue(value)});
}

void SettingsStore::removeGroup(const QString& group) {
    m_data->file.remove(
        [&group](const IniFile::Entry& entry) { return behind(group, pathOf(entry)).has_value(); });
}

void SettingsStore::save() {
    m_data->file.writePrivate(m_data->fileName);
}

#endif

SettingsStore::SettingsStore(std::unique_ptr<Data> data) : m_data(std::move(data)) {}
SettingsStore::~SettingsStore() = default;
SettingsStore::SettingsStore(SettingsStore&&) noexcept = default;
SettingsStore& SettingsStore::operator=(SettingsStore&&) noexcept = default;

}  // namespace platform
