#pragma once

#include <QDateTime>
#include <QString>
#include <vector>

namespace company {

/// A note that an older version's run left behind in a file, because it broke off or passed over
/// products: a run without a journal. Another run would multiply rows of dependent tables again if
/// their product still has the source class.
struct UnfinishedNote {
    QString definition;  ///< empty if unreadable or unnamed
    QDateTime started;   ///< local time; invalid if unreadable
    QString computer;
};

/// Full path of "ALVMUUTOS.KESKEN" in the data folder.
QString unfinishedNoteName();

/// The notes, oldest first. An unreadable file gives one note with empty fields and is told to the
/// log error report.
std::vector<UnfinishedNote> readUnfinishedNotes();
/// Removes the definition's note; removes the file with the last one or if it is damaged.
/// @throws data::DataError.
void acceptUnfinishedNote(const QString& definition);
/// Removes the file. @throws data::DataError.
void acceptUnfinishedNotes();

/// The note as a Finnish sentence.
QString unfinishedNoteText(const UnfinishedNote& note);

}  // namespace company
