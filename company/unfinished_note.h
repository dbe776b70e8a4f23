#pragma once

#include <QDateTime>
#include <QString>
#include <vector>

namespace company {

/// What a run says of itself while it is going on. A note that is found when no run is going on
/// tells of a run that broke off, or that ended with products left behind: rows of dependent tables
/// whose product still carries the source class would be multiplied again by the next one.
struct UnfinishedNote {
    QString definition;  ///< empty when the note cannot be read, or the definition had no name
    QDateTime started;   ///< local time; invalid when the note cannot be read
    QString computer;
};

/// Full path: "ALVMUUTOS.KESKEN" in the company's data folder.
QString unfinishedNoteName();

/// Writes the note of a run that starts now on this computer, in place of an earlier one of the
/// same definition. None of these calls throws; failures go to the log error report.
/// @return whether there was an earlier one.
bool writeUnfinishedNote(const QString& definition);
/// Takes the definition's note away, and the file with the last one.
void removeUnfinishedNote(const QString& definition);
/// The notes that stand there, oldest first; a file that cannot be read comes as one with empty
/// fields.
std::vector<UnfinishedNote> readUnfinishedNotes();

/// The note as a Finnish sentence for the change log.
QString unfinishedNoteText(const UnfinishedNote& note);

}  // namespace company
