#pragma once

#include <QString>
#include <functional>

namespace company {

/// Full path of the change log "ALVMUUTOS.LOG" in the company's log folder, usually its data
/// folder.
QString AlvMuutosLogName();

/// Its size in bytes; 0 if there is none.
qint64 changeLogSize();

/// Appends the line "dd.mm.yyyy hh:nn:ss@COMPUTER  message" in UTF-8 with the platform's line end.
/// Each line is one open-write-close, so lines of several programs never mix. A run of line breaks
/// in the message becomes one blank. Failures go to the error report handler and never stop the
/// caller.
/// Texts beyond those the system prescribes begin with a word that tells their kind: "Huomaa: ",
/// "Tarkastus: ", "Virhe", "Ajo", "Määrittelyä ei".
void WriteAlvMuutosLog(const QString& message);

/// Change log lines of this process that could not be written.
struct LostLogLines {
    qint64 count = 0;
    QString problem;  ///< of the last one, in Finnish: the file and why
};
const LostLogLines& lostChangeLogLines();

/// The same as WriteAlvMuutosLog() for another log file, whose lost lines are not counted.
void writeLogLine(const QString& fileName, const QString& message);

/// Full path of the general log "loki.dat" in the data folder.
QString generalLogName();

/// Appends "dd.mm.yyyy hh:mm:ss  USER@COMPUTER  message" to the general log: Windows-1252 (other
/// characters become "?"), CR LF, the operating system's user. Line breaks and failures as above.
void writeGeneralLog(const QString& message);

/// This machine's host name.
QString computerName();
/// The operating system's name of the user.
QString userName();

/// Sets the handler for failures of the log writers and of other small files that must not stop a
/// run. Texts are Finnish. Default, and for an empty handler: standard error. The handler must not
/// block. Consecutive equal texts are reported once, until a success.
void setLogErrorReport(std::function<void(const QString& text)> report);
void reportLogError(const QString& text);

}  // namespace company
