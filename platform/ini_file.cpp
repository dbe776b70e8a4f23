#include "platform/ini_file.h"

#include <QSaveFile>
#include <QSet>
#include <algorithm>
#include <utility>
#include <vector>

#include "data/error.h"
#include "data/windows1252.h"
#include "platform/read_file.h"

namespace platform {

namespace {

struct Line {
    QString text;  // as in the file, without line break
    QString key;   // empty for comments, empty and malformed lines
    QString value;
};

struct Section {
    QString header;  // line text; empty for the lines before the first section
    QString name;
    std::vector<Line> lines;
};

bool sameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool isBlank(QChar c) {
    return c == u' ' || c == u'\t';
}

QStringView withoutBlanks(QStringView text) {
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

/// Whether quotes around the text protect blanks at its ends, or quotes that would be read so.
bool isProtected(QStringView text) {
    int quotes = 0;
    while (text.size() >= 2 && text.front() == u'"' && text.back() == u'"') {
        text = text.sliced(1, text.size() - 2);
        ++quotes;
    }
    return quotes > 0 && !text.isEmpty() && (isBlank(text.front()) || isBlank(text.back()));
}

QString readValue(QStringView text) {
    text = withoutBlanks(text);
    return (isProtected(text) ? text.sliced(1, text.size() - 2) : text).toString();
}

QString writtenValue(const QString& value) {
    const bool blanks = !value.isEmpty() && (isBlank(value.front()) || isBlank(value.back()));
    return blanks || isProtected(value) ? u'"' + value + u'"' : value;
}

QString onOneLine(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    for (const QChar c : {QChar(u'\r'), QChar(u'\n'), QChar(u'\0')})
        text.replace(c, u' ');
    return text;
}

Line parseLine(const QString& text) {
    Line line{text, {}, {}};
    const QStringView content = withoutBlanks(text);
    const qsizetype equals = content.indexOf(u'=');
    if (equals > 0 && content.front() != u';' && content.front() != u'#') {
        line.key = withoutBlanks(content.first(equals)).toString();
        line.value = readValue(content.sliced(equals + 1));
    }
    return line;
}

QString decoded(const QByteArray& bytes) {
    if (!bytes.isValidUtf8())
        return data::fromWindows1252(bytes);
    QString text = QString::fromUtf8(bytes);
    while (text.startsWith(QChar::ByteOrderMark))
        text.remove(0, 1);
    return text;
}

bool isAscii(const QByteArray& bytes) {
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

data::DataError damaged(const QString& fileName, const QString& what, const QString& finnish) {
    const data::DataError error(data::ErrorKind::Damaged, fileName, what);
    return error.inFinnish(
        finnish,
        QStringLiteral("Korjaa tiedosto tekstieditorilla tai palauta se varmuuskopiosta."));
}

IniFile::Entry entryOf(const Section& section, const Line& line) {
    const QStringView text =
        withoutBlanks(QStringView(line.text).sliced(line.text.indexOf(u'=') + 1));
    return {section.name, line.key, text.toString()};
}

[[noreturn]] void failWrite(const QSaveFile& file) {
    data::ErrorKind kind = data::ErrorKind::Io;
    if (file.error() == QFileDevice::PermissionsError)
        kind = data::ErrorKind::ReadOnly;
    else if (file.error() == QFileDevice::ResourceError)
        kind = data::ErrorKind::DiskFull;
    throw data::DataError(kind, file.fileName(), file.errorString());
}

}  // namespace

struct IniFile::Data {
    std::vector<Section> sections{Section{}};  // the first one: the lines before any section
    QString lineEnd =
#ifdef Q_OS_WIN
        QStringLiteral("\r\n");
#else
        QStringLiteral("\n");
#endif

    Section* find(const QString& name) {
        const auto found =
            std::find_if(sections.begin() + 1, sections.end(),
                         [&name](const Section& section) { return sameName(section.name, name); });
        return found == sections.end() ? nullptr : &*found;
    }

    /// Adds a line after the last key of a section, creating the section if missing.
    void add(const QString& section, Line line) {
        Section* target = find(section);
        if (!target) {
            // Separate the new section by an empty line.
            if (Section& last = sections.back();
                !(last.lines.empty() ? last.header.isEmpty() : last.lines.back().text.isEmpty()))
                last.lines.push_back({});
            sections.push_back({u'[' + section + u']', section, {}});
            target = &sections.back();
        }
        const auto lastKey = std::find_if(target->lines.rbegin(), target->lines.rend(),
                                          [](const Line& known) { return !known.key.isEmpty(); });
        target->lines.insert(lastKey.base(), std::move(line));
    }

    QString text() const {
        QString text;
        for (const Section& section : sections) {
            if (!section.header.isEmpty())
                text += section.header + lineEnd;
            for (const Line& line : section.lines)
                text += line.text + lineEnd;
        }
        return text;
    }

    Line* find(const QString& sectionName, const QString& key) {
        Section* section = find(sectionName);
        if (!section)
            return nullptr;
        const auto found = std::find_if(
            section->lines.begin(), section->lines.end(),
            [&key](const Line& line) { return !line.key.isEmpty() && sameName(line.key, key); });
        return found == section->lines.end() ? nullptr : &*found;
    }
};

IniFile::IniFile() : m_data(std::make_unique<Data>()) {}
IniFile::~IniFile() = default;
IniFile::IniFile(IniFile&&) noexcept = default;
IniFile& IniFile::operator=(IniFile&&) noexcept = default;

IniFile IniFile::read(const QString& fileName) {
    const std::optional<QByteArray> bytes = readRegularFile(fileName, kMaxSize + 1);
    return bytes ? parse(*bytes, fileName) : IniFile();
}

IniFile IniFile::parse(const QByteArray& bytes, const QString& fileName) {
    if (bytes.size() > kMaxSize)
        throw damaged(fileName, QStringLiteral("too large for a settings file"),
                      QStringLiteral("liian suuri asetustiedostoksi"));
    if (const qsizetype nul = bytes.indexOf('\0'); nul >= 0) {
        const QString line = QString::number(bytes.first(nul).count('\n') + 1);
        throw damaged(fileName, QStringLiteral("line %1: not a text file").arg(line),
                      QStringLiteral("rivi %1: ei ole tekstitiedosto").arg(line));
    }

    IniFile ini;
    std::vector<Section>& sections = ini.m_data->sections;
    const QString text = decoded(bytes);
    int lineNumber = 0;
    for (qsizetype start = 0; start < text.size();) {
        qsizetype end = start;
        while (end < text.size() && text.at(end) != u'\n' && text.at(end) != u'\r')
            ++end;
        const QString lineText = text.sliced(start, end - start);
        const bool pair = text.sliced(end, std::min<qsizetype>(2, text.size() - end)) == u"\r\n";
        if (++lineNumber == 1 && end < text.size())
            ini.m_data->lineEnd = pair ? QStringLiteral("\r\n") : QStringLiteral("\n");
        start = end + (pair ? 2 : 1);

        const QStringView content = withoutBlanks(lineText);
        if (!content.startsWith(u'[')) {
            sections.back().lines.push_back(parseLine(lineText));
            continue;
        }
        const qsizetype close = content.indexOf(u']');
        if (close < 0) {
            const QString line = QString::number(lineNumber);
            throw damaged(fileName,
                          QStringLiteral("line %1: section name \"%2\" lacks its ]")
                              .arg(line, content.left(80)),
                          QStringLiteral("rivi %1: osan nimestä \"%2\" puuttuu lopusta hakasulku ]")
                              .arg(line, content.left(80)));
        }
        // trimmed as names are that are looked for: also of no-break spaces
        sections.push_back({lineText, content.sliced(1, close - 1).trimmed().toString(), {}});
    }
    return ini;
}

QByteArray IniFile::toBytes() const {
    const QString text = m_data->text();
    QByteArray bytes;
    if (!data::toWindows1252(text, bytes) || (bytes.isValidUtf8() && !isAscii(bytes)))
        bytes = text.toUtf8();
    return bytes;
}

void IniFile::write(const QString& fileName) const {
    QSaveFile file(fileName);
    const QByteArray bytes = toBytes();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        failWrite(file);
}

void IniFile::writePrivate(const QString& fileName) const {
    QSaveFile file(fileName);
    const QByteArray bytes = m_data->text().toUtf8();
    // before there is anything to read
    if (!file.open(QIODevice::WriteOnly) ||
        !file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) ||
        file.write(bytes) != bytes.size() || !file.commit())
        failWrite(file);
}

QStringList IniFile::sections() const {
    QStringList names;
    QSet<QString> seen;
    for (const Section& section : m_data->sections) {
        if (section.header.isEmpty() || seen.contains(section.name.toCaseFolded()))
            continue;
        seen.insert(section.name.toCaseFolded());
        names.append(section.name);
    }
    return names;
}

QStringList IniFile::keys(const QString& section) const {
    QStringList names;
    const Section* found = m_data->find(section);
    if (!found)
        return names;
    QSet<QString> seen;
    for (const Line& line : found->lines) {
        if (line.key.isEmpty() || seen.contains(line.key.toCaseFolded()))
            continue;
        seen.insert(line.key.toCaseFolded());
        names.append(line.key);
    }
    return names;
}

std::optional<QString> IniFile::value(const QString& section, const QString& key) const {
    const Line* line = m_data->find(section, key);
    return line ? std::optional<QString>(line->value) : std::nullopt;
}

void IniFile::setValue(const QString& section, const QString& key, const QString& value) {
    const QString clean = onOneLine(value);
    if (Line* line = m_data->find(section, key)) {
        if (line->value != clean)
            *line = {line->key + u'=' + writtenValue(clean), line->key, clean};
        return;
    }
    m_data->add(section, {key + u'=' + writtenValue(clean), key, clean});
}

std::vector<IniFile::Entry> IniFile::entries() const {
    std::vector<Entry> all;
    for (const Section& section : m_data->sections) {
        for (const Line& line : section.lines) {
            if (!line.key.isEmpty())
                all.push_back(entryOf(section, line));
        }
    }
    return all;
}

void IniFile::add(const Entry& entry) {
    m_data->add(entry.section, parseLine(entry.key + u'=' + entry.text));
}

void IniFile::remove(const std::function<bool(const Entry&)>& unwanted) {
    for (Section& section : m_data->sections)
        std::erase_if(section.lines, [&](const Line& line) {
            return !line.key.isEmpty() && unwanted(entryOf(section, line));
        });
}

bool IniFile::removeKey(const QString& section, const QString& key) {
    size_t removed = 0;
    for (Section& candidate : m_data->sections) {
        if (!candidate.header.isEmpty() && sameName(candidate.name, section))
            removed += std::erase_if(candidate.lines, [&key](const Line& line) {
                return !line.key.isEmpty() && sameName(line.key, key);
            });
    }
    return removed > 0;
}

bool IniFile::removeSection(const QString& section) {
    return std::erase_if(m_data->sections, [&section](const Section& candidate) {
               return !candidate.header.isEmpty() && sameName(candidate.name, section);
           }) > 0;
}

int IniFile::malformedLine(const std::optional<QString>& section) const {
    const Section* wanted = section ? m_data->find(*section) : nullptr;
    int number = 0;
    for (const Section& candidate : m_data->sections) {
        if (!candidate.header.isEmpty())
            ++number;
        for (const Line& line : candidate.lines) {
            ++number;
            const QStringView content = withoutBlanks(line.text);
            if ((!section || &candidate == wanted) && line.key.isEmpty() && !content.isEmpty() &&
                content.front() != u';' && content.front() != u'#')
                return number;
        }
    }
    return 0;
}

int IniFile::repeatedLine(const QString& section) const {
    int number = 0;
    bool seen = false;
    for (const Section& candidate : m_data->sections) {
        if (!candidate.header.isEmpty()) {
            ++number;
            if (sameName(candidate.name, section) && std::exchange(seen, true))
                return number;
        }
        number += static_cast<int>(candidate.lines.size());
    }
    return 0;
}

bool IniFile::hasSection(const QString& section) const {
    return m_data->find(section) != nullptr;
}

}  // namespace platform
