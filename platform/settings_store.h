#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <vector>

namespace platform {

/// A place of the settings that companies share. Windows: a registry key; elsewhere "aliases.ini"
/// in the user's settings folder, readable by the user only (it may hold passwords). Settings lie
/// in groups; "a/b" is group b in group a. Names of settings and of top-level groups ignore the
/// case of a to z.
/// @throws data::DataError(Io, Damaged, Locked) naming the file, from all functions.
class SettingsStore {
  public:
    enum class Use {
        Read,
        Write  ///< locks out other programs during the object's life
    };

    /// All places, the writable one first. Opening reads them.
    static std::vector<SettingsStore> openAll(Use use);

    ~SettingsStore();
    SettingsStore(SettingsStore&&) noexcept;
    SettingsStore& operator=(SettingsStore&&) noexcept;

    QStringList groupsIn(const QString& group) const;
    std::optional<QString> value(const QString& group, const QString& name) const;
    /// Adds a setting whose name must be new in the group.
    void add(const QString& group, const QString& name, const QString& value);
    void removeGroup(const QString& group);
    /// Writes the changes.
    void save();

  private:
    struct Data;
    explicit SettingsStore(std::unique_ptr<Data> data);
    std::unique_ptr<Data> m_data;
};

}  // namespace platform
