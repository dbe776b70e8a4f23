#pragma once

#include <QString>
#include <functional>

namespace company {

/// Full path of the change log: the data folder by the folder rule, then "ALVMUUTOS.LOG".
QString AlvMuutosLogName();

/// Appends "dd.mm.yyyy hh:nn:ss@COMPUTER  message" as one line of UTF-8 with the platform's line
/// end; opened, written and closed for each line, in one write, so that lines of several programs
/// never mix. Line breaks in the message become one blank each run of them; all else, blanks at the
/// end included, stays. A failure never stops the caller: it goes to the error report handler.
void WriteAlvMuutosLog(const QString& message);

/// A line of the same form in another log file.
void writeLogLine(const QString& fileName, const QString& message);

/// Full path of the general log "loki.dat" of the data folder.
QString generalLogName();

/// Appends to the general log "dd.mm.yyyy hh:mm:ss  USER@COMPUTER  message" (Windows-1252, a
/// character that it lacks is written as "?"; CR LF; the operating system's user). Line breaks and
/// failures as above.
void writeGeneralLog(const QString& message);

/// The operating system's name of this machine.
QString computerName();

/// Where failures of the log writers (and of other small files that must not stop a run) are
/// reported, in Finnish; by default, and with an empty handler, standard error. Must not block. A
/// failure that repeats is reported once until another one or a success comes between.
void setLogErrorReport(std::function<void(const QString& text)> report);
void reportLogError(const QString& text);

}  // namespace company
