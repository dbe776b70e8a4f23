#pragma once

namespace platform {

/// From now on a request to end (SIGTERM or SIGHUP; on Windows a closed console, the end of the
/// session or a shutdown) sets endRequested() instead of ending the process. A second signal ends
/// it.
void watchEndRequests();

/// As if the system had requested the end; for the toolkit's own notice of it.
void requestEnd();

bool endRequested();

}  // namespace platform
