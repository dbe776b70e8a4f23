#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <vector>

namespace platform {

/// One place of the settings that companies share: on Windows a key of the registry, elsewhere the
/// file "aliases.ini" of the user's settings folder, which is for the user's eyes alone (it may
/// hold passwords). Settings have a name and lie in groups, "a/b" being group b of group a. Names
/// of settings and of outermost groups ignore the case of a to z.
/// @throws data::DataError(Io, Damaged, Locked) naming the file, from everything.
class SettingsStore {
  public:
    enum class Use {
        Read,
        Write  ///< no other program changes the store while this object lives
    };

    /// The places, the one that is written first. Each is read when it is opened.
    static std::vector<SettingsStore> openAll(Use use);

    ~SettingsStore();
    SettingsStore(SettingsStore&&) noexcept;
    SettingsStore& operator=(SettingsStore&&) noexcept;

    QStringList groupsIn(const QString& group) const;
    std::optional<QString> value(const QString& group, const QString& name) const;
    /// Adds a setting; there is none of its name in the group.
    void add(const QString& group, const QString& name, const QString& value);
    void removeGroup(const QString& group);
    /// Stores what was added and removed.
    void save();

  private:
    struct Data;
    explicit SettingsStore(std::unique_ptr<Data> data);
    std::unique_ptr<Data> m_data;
};

}  // namespace platform
