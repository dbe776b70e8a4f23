#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

namespace company {

/// What a run says of itself while it is going on. A note that is found when no run is going on
/// tells of a run that broke off: rows of dependent tables whose product still carries the source
/// class would be multiplied again by the next one.
struct UnfinishedNote {
    QString definition;  ///< empty when the note cannot be read
    QDateTime started;   ///< local time; invalid when the note cannot be read
    QString computer;
};

/// Full path: "ALVMUUTOS.KESKEN" in the company's data folder.
QString unfinishedNoteName();

/// Writes the note of a run that starts now on this computer. None of these calls throws; failures
/// go to the log error report.
void writeUnfinishedNote(const QString& definition);
/// Takes the note away at the end of the run.
void removeUnfinishedNote();
/// The note that stands there; one that cannot be read comes with empty fields.
std::optional<UnfinishedNote> readUnfinishedNote();

/// The note as a Finnish sentence for the change log.
QString unfinishedNoteText(const UnfinishedNote& note);

}  // namespace company
