#pragma once

namespace platform {

/// From now on, files and folders created by the process are not world-writable, whatever the
/// umask. Does nothing on Windows, where the folder's access list decides.
void denyWriteToOthers();

/// From now on, a write beyond the file size that the system allows the process fails like any
/// other instead of ending the process by a signal (SIGXFSZ).
void reportFileSizeLimit();

}  // namespace platform
