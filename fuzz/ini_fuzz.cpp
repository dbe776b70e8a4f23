#include <QByteArray>

#include "data/error.h"
#include "fuzz/fuzz.h"
#include "platform/ini_file.h"
#include "platform/settings_text.h"

using platform::IniFile;

namespace {

/// Every entry comes back from the written file.
void requireSame(const IniFile& a, const IniFile& b) {
    require(a.sections() == b.sections());
    for (const QString& section : a.sections()) {
        require(a.keys(section) == b.keys(section));
        for (const QString& key : a.keys(section))
            require(a.value(section, key) == b.value(section, key));
    }
}

/// Text encoded for the settings file reads back; any text can be decoded.
void requireSpelling(const QString& text) {
    require(platform::plainValue(platform::writtenValue(text)) == text &&
            platform::plainPath(platform::writtenPath(text)) == text);
    const QString value = platform::plainValue(text);
    require(platform::plainValue(platform::writtenValue(value)) == value);
    platform::plainPath(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    if (size > 4096)  // each lookup scans the file
        return 0;
    const QByteArray input = inputBytes(bytes, size);
    try {
        IniFile ini = IniFile::parse(input, QStringLiteral("fuzz.ini"));
        requireSame(ini, IniFile::parse(ini.toBytes(), {}));

        for (const IniFile::Entry& entry : ini.entries()) {
            requireSpelling(entry.key);
            requireSpelling(entry.text);
        }

        // The input as a value of an existing and of a new key.
        const QString value = QString::fromUtf8(input);
        requireSpelling(value);
        if (const QStringList sections = ini.sections(); !sections.isEmpty()) {
            if (const QStringList keys = ini.keys(sections.first()); !keys.isEmpty())
                ini.setValue(sections.first(), keys.last(), value);
        }
        ini.setValue(QStringLiteral("new"), QStringLiteral("key"), value);
        requireSame(ini, IniFile::parse(ini.toBytes(), {}));
        ini.removeSection(QStringLiteral("NEW"));
        require(!ini.hasSection(QStringLiteral("new")));
    } catch (const data::DataError& error) {
        require(error.kind() == data::ErrorKind::Damaged);
    }
    return 0;
}
