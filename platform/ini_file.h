#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace platform {

/// An INI file in memory. Read as UTF-8 if valid, else as Windows-1252. Written as Windows-1252, or
/// as UTF-8 if a character needs it or if the Windows-1252 bytes would be valid UTF-8. Section and
/// key names ignore case; of equal ones the first counts. Lines that are not changed are kept byte
/// for byte: order, unknown keys, comments, malformed lines, line ends.
///
/// A value is the text after "=" without blanks and tabs at its ends; quotes, ";" and "#" are
/// ordinary characters in it. Only values with blanks at an end are written in double quotes, which
/// are removed on reading. Line breaks and NUL in a value become blanks.
class IniFile {
  public:
    IniFile();
    ~IniFile();
    IniFile(IniFile&&) noexcept;
    IniFile& operator=(IniFile&&) noexcept;

    /// Larger files (bytes) are rejected as damaged; no settings file comes near this.
    static constexpr qint64 kMaxSize = qint64{16} * 1024 * 1024;

    /// A missing file reads as empty.
    /// @throws data::DataError naming the file: Io if it cannot be read or is no regular file,
    /// Damaged, with the line, for NUL characters (UTF-16, a binary file) and section names without
    /// "]" (their keys would go to the section before).
    static IniFile read(const QString& fileName);
    /// Parses a file's bytes; `fileName` is used in errors.
    static IniFile parse(const QByteArray& bytes, const QString& fileName);
    /// Writes a new file and renames it over the old one, so that a failure keeps the old one. The
    /// folder must exist.
    /// @throws data::DataError(Io, DiskFull, ReadOnly) naming the file.
    void write(const QString& fileName) const;
    /// Like write(), but in UTF-8 and readable by the user only.
    void writePrivate(const QString& fileName) const;
    QByteArray toBytes() const;

    QStringList sections() const;                    ///< in file order, without duplicates
    QStringList keys(const QString& section) const;  ///< in file order, without duplicates
    std::optional<QString> value(const QString& section, const QString& key) const;
    /// Replaces the value, or adds the key after the section's last one (a new section goes to the
    /// end of the file). Names must not hold line breaks, section names no brackets, keys no "=".
    void setValue(const QString& section, const QString& key, const QString& value);
    bool removeKey(const QString& section, const QString& key);
    bool removeSection(const QString& section);
    /// A key with the raw text after "=", without blanks and tabs at its ends: for files with an
    /// encoding of their own for names and values. An empty section: before the first.
    struct Entry {
        QString section;
        QString key;
        QString text;
    };
    std::vector<Entry> entries() const;  ///< in file order, with duplicates
    /// Adds a key after the section's last one, even if it exists.
    void add(const Entry& entry);
    void remove(const std::function<bool(const Entry&)>& unwanted);
    bool hasSection(const QString& section) const;
    /// Number (from 1, as the file would be written) of the first malformed line of a section or
    /// the file: no key, comment or section name and not empty. It may be a truncated key. 0 if
    /// none.
    int malformedLine(const std::optional<QString>& section = std::nullopt) const;
    /// Number of the line on which a section's name stands for the second time; that section is not
    /// read. 0 if it does not.
    int repeatedLine(const QString& section) const;

  private:
    struct Data;
    std::unique_ptr<Data> m_data;
};

}  // namespace platform
