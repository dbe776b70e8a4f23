#pragma once

#include <QDateTime>
#include <QString>
#include <vector>

namespace company {

/// A note that a run keeps in a file while it is going on. A note found later means that the run
/// broke off or left products behind: the next run would multiply rows of dependent tables again if
/// their product still has the source class.
struct UnfinishedNote {
    QString definition;  ///< empty if unreadable or unnamed
    QDateTime started;   ///< local time; invalid if unreadable
    QString computer;
};

/// Full path of "ALVMUUTOS.KESKEN" in the data folder.
QString unfinishedNoteName();

/// Writes the note of a run that starts now, replacing an earlier one of the same definition. None
/// of these functions throws; failures go to the log error report.
/// @return whether there was an earlier note
bool writeUnfinishedNote(const QString& definition);
/// Removes the definition's note; removes the file with the last one.
void removeUnfinishedNote(const QString& definition);
/// The notes, oldest first. An unreadable file gives one note with empty fields.
std::vector<UnfinishedNote> readUnfinishedNotes();

/// The note as a Finnish sentence.
QString unfinishedNoteText(const UnfinishedNote& note);

}  // namespace company
