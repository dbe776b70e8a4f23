#pragma once

#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

namespace company {

/// An INI file in memory. Read as UTF-8 when it is valid UTF-8 and as Windows-1252 otherwise;
/// written as Windows-1252, as UTF-8 when a text needs it. Section and key names compare without
/// regard to case; order and foreign keys survive a save. Values are taken as they stand, without
/// quotes or escapes; line breaks in a value are kept out by the writer.
class IniFile {
  public:
    IniFile();
    ~IniFile();
    IniFile(IniFile&&) noexcept;
    IniFile& operator=(IniFile&&) noexcept;

    /// A missing file reads as empty. @throws data::DataError(Io, Damaged) naming the file.
    static IniFile read(const QString& fileName);
    /// Writes to a new file first and puts it in the old one's place, so a failure leaves the old
    /// one.
    /// @throws data::DataError(Io, DiskFull, ReadOnly) naming the file.
    void write(const QString& fileName) const;

    QStringList sections() const;                    ///< in file order
    QStringList keys(const QString& section) const;  ///< in file order
    std::optional<QString> value(const QString& section, const QString& key) const;
    void setValue(const QString& section, const QString& key, const QString& value);
    bool removeKey(const QString& section, const QString& key);
    bool removeSection(const QString& section);
    bool hasSection(const QString& section) const;

  private:
    struct Data;
    std::unique_ptr<Data> m_data;
};

}  // namespace company
