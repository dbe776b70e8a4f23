#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

namespace shell {

// What a batch leaves besides its changes. Both return why they failed, in Finnish; empty if they
// did not.

/// A checked backup of the current company in a folder, named by company and time. Entered in the
/// general log. Stops when `endRequested` says so.
QString batchBackup(const QString& folder, const std::function<bool()>& endRequested);

/// The report of the runs as a PDF in the company's folder RAPORTIT, named by time and definition.
/// `notes` come first in it.
QString batchReport(const std::vector<qint64>& runs, const QStringList& notes);

/// Full path of that folder.
QString reportFolder();

}  // namespace shell
