#pragma once

#include <QString>
#include <QStringList>

#include "vatchange/journal/verification.h"

namespace vatchange {

/// "Tarkastus: ..." with counts and the first findings: the change log's line and the end of the
/// form's closing message.
QString verificationLine(const Verification& verification);

/// Counts, sums, what was left and the kept findings, a line each, in Finnish.
QStringList verificationTextFinnish(const Verification& verification);
/// The same in English, for zavdb.
QStringList verificationTextEnglish(const Verification& verification);

/// The reason in words: "rajaus".
QString reasonFinnish(LeftReason reason);
QString causeFinnish(UnchangedCause cause);

/// One finding in a line.
QString findingFinnish(const Finding& finding);
QString findingEnglish(const Finding& finding);

}  // namespace vatchange
