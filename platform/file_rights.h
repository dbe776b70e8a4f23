#pragma once

namespace platform {

/// From now on, files and folders created by the process are not world-writable, whatever the
/// umask. Does nothing on Windows, where the folder's access list decides.
void denyWriteToOthers();

}  // namespace platform
