#pragma once

namespace engines::sqlite {

/// A virtual file system of SQLite over `base` (nullptr: the platform's default) that writes the
/// frames of a commit to the write-ahead log with one system call instead of two a page. What a
/// commit has written is in the file when SQLite's last write of it returns, as without; all other
/// files are the base's own. @return its name, for sqlite3_open_v2(); null if there is no such
/// base.
const char* withJoinedLogWrites(const char* base);

}  // namespace engines::sqlite
