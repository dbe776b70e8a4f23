#include "company/unfinished_note.h"

#include <QFile>
#include <QRegularExpression>

#include "company/company.h"
#include "company/logs.h"
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

QStringList noteSections(const platform::IniFile& file) {
    static const QRegularExpression kNotes(u'^' + kSection);
    return file.sections().filter(kNotes);
}

}  // namespace

QString unfinishedNoteName() {
    return dataFolderFile(QStringLiteral("ALVMUUTOS.KESKEN"));
}

void acceptUnfinishedNote(const QString& definition) {
    if (!QFile::exists(unfinishedNoteName()))
        return;
    platform::IniFile notes;
    try {
        notes = platform::IniFile::read(unfinishedNoteName());
    } catch (const data::DataError& error) {
        if (error.kind() != data::ErrorKind::Damaged)
            throw;
    }
    for (const QString& section : noteSections(notes)) {
        if (notes.value(section, kDefinition).value_or(QString()) == definition)
            notes.removeSection(section);
    }
    if (noteSections(notes).isEmpty())
        acceptUnfinishedNotes();
    else
        notes.write(unfinishedNoteName());
}

void acceptUnfinishedNotes() {
    QFile file(unfinishedNoteName());
    if (file.exists() && !file.remove())
        throw data::DataError(data::ErrorKind::Io, file.fileName(), file.errorString());
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
