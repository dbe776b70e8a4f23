#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace platform {

/// An INI file in memory. Read as UTF-8 when it is valid UTF-8 and as Windows-1252 otherwise;
/// written as Windows-1252, as UTF-8 when a text needs it (or when its Windows-1252 bytes would be
/// taken for UTF-8). Section and key names compare without regard to case; the first of equal ones
/// counts. Kept as lines, so that everything that is not changed survives a save as it stood:
/// order, foreign keys, comments wherever they are, lines that say nothing, the line end.
///
/// A value is what follows the "=", without blanks and tabs at its ends; quotes, ";" and "#" in it
/// are ordinary characters. Only a text with blanks at an end is written between double quotes,
/// which come off again when it is read. Line breaks and NUL in a value become blanks.
class IniFile {
  public:
    IniFile();
    ~IniFile();
    IniFile(IniFile&&) noexcept;
    IniFile& operator=(IniFile&&) noexcept;

    /// Files beyond this size (bytes) are refused as damaged: no settings file comes near it.
    static constexpr qint64 kMaxSize = qint64{16} * 1024 * 1024;

    /// A missing file reads as empty. @throws data::DataError(Io, Damaged) naming the file, and the
    /// line where one is at fault: NUL characters (UTF-16 text, a foreign file), a section name
    /// without its "]" (its keys would count for the section before).
    static IniFile read(const QString& fileName);
    /// As read, on the bytes of a file; `fileName` stands in the error.
    static IniFile parse(const QByteArray& bytes, const QString& fileName);
    /// Writes to a new file first and puts it in the old one's place, so a failure leaves the old
    /// one. The folder must exist.
    /// @throws data::DataError(Io, DiskFull, ReadOnly) naming the file.
    void write(const QString& fileName) const;
    /// As write, but in UTF-8, and only the user may read the file.
    void writePrivate(const QString& fileName) const;
    QByteArray toBytes() const;

    QStringList sections() const;                    ///< in file order, names of equal meaning once
    QStringList keys(const QString& section) const;  ///< in file order, each once
    std::optional<QString> value(const QString& section, const QString& key) const;
    /// Replaces the value, or adds the key after the section's last one (and the section at the end
    /// of the file). Names: no line breaks, no brackets in a section's, no "=" in a key's.
    void setValue(const QString& section, const QString& key, const QString& value);
    bool removeKey(const QString& section, const QString& key);
    bool removeSection(const QString& section);
    /// A key with what follows its "=" in the file, without blanks and tabs at the ends: for files
    /// whose names and values have a spelling of their own. Empty section: before any.
    struct Entry {
        QString section;
        QString key;
        QString text;
    };
    std::vector<Entry> entries() const;  ///< in file order, those of equal names too
    /// Adds a key after the section's last one, whatever keys it has.
    void add(const Entry& entry);
    void remove(const std::function<bool(const Entry&)>& unwanted);
    bool hasSection(const QString& section) const;
    /// Number of the first line (of a section, or of the file) that is no key, comment or section
    /// name nor empty: it may be what is left of a key. 0 when there is none. Lines count from 1,
    /// as the file would be written.
    int strayLine(const std::optional<QString>& section = std::nullopt) const;

  private:
    struct Data;
    std::unique_ptr<Data> m_data;
};

}  // namespace platform
