#pragma once

#include <QString>
#include <optional>

namespace shell {

/// A build time (seconds since 1970) as local "dd.mm.yyyy hh:nn:ss". Without one: date-time zero,
/// 30 December 1899.
QString buildStampText(std::optional<qint64> buildTime);

/// Sets the running program's build time. main() calls it first.
void setBuildTime(qint64 secondsSince1970);
/// The link time in the running program's image; none on platforms without one, or if the build
/// left it out.
std::optional<qint64> imageTime();
/// The stamp of the running program.
QString buildStamp();

}  // namespace shell
