#include "company/unfinished_note.h"

#include <QFile>
#include <QRegularExpression>

#include "company/company.h"
#include "company/logs.h"
#include "data/clock.h"
#include "data/error.h"
#include "platform/ini_file.h"

namespace company {

namespace {

const QString kSection = QStringLiteral("AJO");
const QString kDefinition = QStringLiteral("Maarittely");
const QString kStarted = QStringLiteral("Alkoi");
const QString kComputer = QStringLiteral("Kone");
const QString kTimeFormat = QStringLiteral("yyyy-MM-dd hh:mm:ss");

template <typename Action>
void guarded(Action&& action) {
    try {
        action();
    } catch (const data::DataError& error) {
        reportLogError(error.finnish());
    }
}

/// A damaged file must not prevent a new note.
platform::IniFile readOrNew() {
    try {
        return platform::IniFile::read(unfinishedNoteName());
    } catch (const data::DataError& error) {
        if (error.kind() != data::ErrorKind::Damaged)
            throw;
        reportLogError(error.finnish());
        return {};
    }
}

QStringList noteSections(const platform::IniFile& file) {
    static const QRegularExpression kNotes(u'^' + kSection);
    return file.sections().filter(kNotes);
}

bool removeNotes(platform::IniFile& file, const QString& definition) {
    bool removed = false;
    for (const QString& section : noteSections(file)) {
        if (file.value(section, kDefinition).value_or(QString()) == definition)
            removed = file.removeSection(section) || removed;
    }
    return removed;
}

QString freeSection(const platform::IniFile& file) {
    QString section = kSection;
    for (int n = 2; file.hasSection(section); ++n)
        section = kSection + u' ' + QString::number(n);
    return section;
}

}  // namespace

QString unfinishedNoteName() {
    return dataFolderFile(QStringLiteral("ALVMUUTOS.KESKEN"));
}

bool writeUnfinishedNote(const QString& definition) {
    bool isAgain = false;
    guarded([&] {
        platform::IniFile file = readOrNew();
        isAgain = removeNotes(file, definition);
        const QString section = freeSection(file);
        file.setValue(section, kDefinition, definition);
        file.setValue(section, kStarted, data::Clock::now().toString(kTimeFormat));
        file.setValue(section, kComputer, computerName());
        file.write(unfinishedNoteName());
    });
    return isAgain;
}

void removeUnfinishedNote(const QString& definition) {
    guarded([&definition] {
        if (!QFile::exists(unfinishedNoteName()))
            return;
        platform::IniFile notes = readOrNew();
        removeNotes(notes, definition);
        if (!noteSections(notes).isEmpty()) {
            notes.write(unfinishedNoteName());
            return;
        }
        QFile file(unfinishedNoteName());
        if (!file.remove())
            reportLogError(QStringLiteral("Tiedostoa \"%1\" ei voi poistaa: %2")
                               .arg(file.fileName(), file.errorString()));
    });
}

std::vector<UnfinishedNote> readUnfinishedNotes() {
    if (!QFile::exists(unfinishedNoteName()))
        return {};
    std::vector<UnfinishedNote> notes;
    guarded([&notes] {
        const platform::IniFile file = platform::IniFile::read(unfinishedNoteName());
        for (const QString& section : noteSections(file)) {
            notes.push_back({file.value(section, kDefinition).value_or(QString()),
                             QDateTime::fromString(
                                 file.value(section, kStarted).value_or(QString()), kTimeFormat),
                             file.value(section, kComputer).value_or(QString())});
        }
    });
    if (notes.empty())
        notes.emplace_back();
    return notes;
}

QString unfinishedNoteText(const UnfinishedNote& note) {
    QString text = QStringLiteral("Edellinen ajo jäi kesken");
    if (!note.definition.isEmpty())
        text += QStringLiteral(", määrittely ") + note.definition;
    if (note.started.isValid())
        text += QStringLiteral(", aloitettu ") +
                note.started.toString(QStringLiteral("dd.MM.yyyy hh:mm:ss"));
    if (!note.computer.isEmpty())
        text += QStringLiteral(", kone ") + note.computer;
    return text;
}

}  // namespace company
