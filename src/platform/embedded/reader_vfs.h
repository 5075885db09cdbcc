// How SQLite's files are opened by a machine that is only read while a log stands beside them.
#pragma once

namespace korvex::platform {

// The name of a variant of SQLite's usual file system. Its databases take no locks and have no
// index file, and logs are opened for reading only; a connection needs locking_mode=EXCLUSIVE,
// which keeps the index in memory. Something else must keep database and log as they are meanwhile.
// Null where SQLite refuses it.
const char* readerVfs();

}  // namespace korvex::platform
