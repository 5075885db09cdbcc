// A file system for readers that leave no trace.
#include "platform/embedded/reader_vfs.h"

#include <sqlite3.h>

namespace korvex::platform {
namespace {

int noLock(sqlite3_file* /*file*/, int /*level*/) { return SQLITE_OK; }

int nothingReserved(sqlite3_file* /*file*/, int* reserved) {
  *reserved = 0;
  return SQLITE_OK;
}

// The usual calls but for locks; the first version of the table has none for an index file. Closing
// stays the usual one, since it keeps the locks that this process holds by other connections.
const sqlite3_io_methods* withoutLocks(const sqlite3_io_methods* usual) {
  static const sqlite3_io_methods kMethods = [usual] {
    sqlite3_io_methods methods = *usual;
    methods.iVersion = 1;
    methods.xLock = noLock;
    methods.xUnlock = noLock;
    methods.xCheckReservedLock = nothingReserved;
    return methods;
  }();
  return &kMethods;
}

int openForReading(sqlite3_vfs* /*vfs*/, sqlite3_filename name, sqlite3_file* file, int flags,
                   int* outFlags) {
  sqlite3_vfs* const usual = sqlite3_vfs_find(nullptr);
  if ((flags & SQLITE_OPEN_WAL) != 0) {
    // Under another kind of file: a log would be given the database's owner again.
    flags = SQLITE_OPEN_SUBJOURNAL | SQLITE_OPEN_READONLY;
  }
  const int result = usual->xOpen(usual, name, file, flags, outFlags);
  if (result == SQLITE_OK && (flags & SQLITE_OPEN_MAIN_DB) != 0) {
    file->pMethods = withoutLocks(file->pMethods);
  }
  return result;
}

}  // namespace

const char* readerVfs() {
  static sqlite3_vfs vfs = [] {
    sqlite3_vfs variant = *sqlite3_vfs_find(nullptr);
    variant.zName = "korvex-reader";
    variant.pNext = nullptr;
    variant.xOpen = openForReading;
    return variant;
  }();
  static const int kResult = sqlite3_vfs_register(&vfs, 0);
  return kResult == SQLITE_OK ? vfs.zName : nullptr;
}

}  // namespace korvex::platform
