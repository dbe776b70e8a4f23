#pragma once

namespace platform {

/// Files and folders that the process makes from now on are not writable for everybody, whatever
/// the umask leaves. Does nothing on Windows, where the folder's access list says it.
void withholdWritingFromOthers();

}  // namespace platform
