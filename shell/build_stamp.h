#pragma once

#include <QString>
#include <optional>

namespace shell {

/// A build time (seconds since 1970) as local "dd.mm.yyyy hh:nn:ss"; without one the stamp of
/// date-time zero, 30 December 1899.
QString buildStampText(std::optional<qint64> buildTime);

/// Sets the program's own build time; called first of all by the main program.
void setBuildTime(qint64 secondsSince1970);
/// The time that the linker wrote into the running program's image; none on platforms whose
/// images carry no time, and none where a build left it out.
std::optional<qint64> imageTime();
/// The stamp of the running program.
QString buildStamp();

}  // namespace shell
