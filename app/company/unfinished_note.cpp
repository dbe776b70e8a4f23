#include "app/company/unfinished_note.h"

#include <QFile>

#include "app/company/company.h"
#include "app/company/ini_file.h"
#include "app/company/logs.h"
#include "data/clock.h"
#include "data/error.h"

namespace company {

namespace {

const QString kSection = QStringLiteral("AJO");
const QString kDefinition = QStringLiteral("Maarittely");
const QString kStarted = QStringLiteral("Alkoi");
const QString kComputer = QStringLiteral("Kone");
const QString kTimeFormat = QStringLiteral("yyyy-MM-dd hh:mm:ss");

}  // namespace

QString unfinishedNoteName() {
    return dataFolderFile(QStringLiteral("ALVMUUTOS.KESKEN"));
}

void writeUnfinishedNote(const QString& definition) {
    IniFile note;
    note.setValue(kSection, kDefinition, definition);
    note.setValue(kSection, kStarted, data::Clock::now().toString(kTimeFormat));
    note.setValue(kSection, kComputer, computerName());
    try {
        note.write(unfinishedNoteName());
    } catch (const data::DataError& error) {
        reportLogError(error.finnish());
    }
}

void removeUnfinishedNote() {
    QFile file(unfinishedNoteName());
    if (file.exists() && !file.remove())
        reportLogError(QStringLiteral("Tiedostoa \"%1\" ei voi poistaa: %2")
                           .arg(file.fileName(), file.errorString()));
}

std::optional<UnfinishedNote> readUnfinishedNote() {
    const QString fileName = unfinishedNoteName();
    if (!QFile::exists(fileName))
        return std::nullopt;
    UnfinishedNote note;
    try {
        const IniFile file = IniFile::read(fileName);
        note.definition = file.value(kSection, kDefinition).value_or(QString());
        note.started =
            QDateTime::fromString(file.value(kSection, kStarted).value_or(QString()), kTimeFormat);
        note.computer = file.value(kSection, kComputer).value_or(QString());
    } catch (const data::DataError& error) {
        reportLogError(error.finnish());
    }
    return note;
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
