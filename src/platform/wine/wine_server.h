// The server that keeps a prefix's registry in memory while programs run, and writes the files
// when it pleases: behind its back they must not be changed.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/common/file_descriptor.h"
#include "platform/status.h"

namespace korvex::platform {

// Finds the server's lock file of a prefix: its folder's device and inode name it, below the
// owner's folder in the system's temporary folder (".wine-UID", or the one that the prefix's
// file "wineserver" names). Looking takes no lock and leaves no trace.
class WineServer {
 public:
  // temporaryFolder: where servers keep their sockets; /tmp and TMPDIR unless a test says else.
  explicit WineServer(std::filesystem::path prefix, std::filesystem::path temporaryFolder = {});

  // The process that serves the prefix, 0 where it is in another container; nothing where none
  // does.
  std::optional<pid_t> process() const;
  // True where a program of Wine runs on the prefix, or no lock file is found and the files are
  // less than a minute old: a server may run where its lock cannot be seen (another container).
  // Also true after somebody has just copied or changed the files of a prefix that never ran here.
  bool mayRunUnseen() const;

  // Keeps a server from starting for the moment in which files are renamed. 170 where one runs.
  // Held until the descriptor is closed; where the lock file has never been made there is nothing
  // to hold, and the descriptor stays empty. It is a lock of the process: while it is held, nothing
  // else of the process may ask for this prefix's server, because to close the lock file, by any
  // descriptor, is to lose it. Two kinds of Wine used on one prefix have a lock file each: the one
  // that was used last is held.
  Status keepAway(FileDescriptor& lock) const;

 private:
  std::vector<std::filesystem::path> temporaryFolders() const;
  // Opened; the one that was used last comes first.
  std::vector<FileDescriptor> lockFiles(int flags) const;

  std::filesystem::path prefix_;
  std::filesystem::path temporaryFolder_;
};

}  // namespace korvex::platform
