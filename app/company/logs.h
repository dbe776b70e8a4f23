#pragma once

#include <QString>
#include <functional>

namespace company {

/// Full path of the change log: the data folder by the folder rule, then "ALVMUUTOS.LOG".
QString AlvMuutosLogName();

/// Appends "dd.mm.yyyy hh:nn:ss@COMPUTER  message" as one line of UTF-8; opened, written and closed
/// for each line. A failure never stops the caller: it goes to the error report handler.
void WriteAlvMuutosLog(const QString& message);

/// Appends to the general log "loki.dat" of the data folder (Windows-1252, CR LF).
void writeGeneralLog(const QString& message);

/// The operating system's name of this machine.
QString computerName();

/// Where failures of the log writers are reported; by default standard error. Never blocks.
void setLogErrorReport(std::function<void(const QString& text)> report);

}  // namespace company
