// The server that keeps a prefix's registry in memory while programs run, and writes the files
// when it pleases: behind its back they must not be changed.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>

#include "platform/common/file_descriptor.h"
#include "platform/status.h"

namespace korvex::platform {

// Finds the server's lock file of a prefix: its folder's device and inode name it, below the
// user's own folder in the system's temporary folder (".wine-UID", or the one that the prefix's
// file "wineserver" names). Looking takes no lock and leaves no trace.
class WineServer {
 public:
  // temporaryFolder: where servers keep their sockets; the system's own unless a test says else.
  explicit WineServer(std::filesystem::path prefix, std::filesystem::path temporaryFolder = {});

  // The process that serves the prefix; nothing where none does.
  std::optional<pid_t> process() const;
  // True where the files are so young, or a process of this user so looks, that a server may run
  // where its lock cannot be seen (another container).
  bool mayRunUnseen() const;

  // Keeps a server from starting for the moment in which files are renamed. 170 where one runs.
  // Held until the descriptor is closed; where the lock file has never been made there is nothing
  // to hold, and the descriptor stays empty.
  Status keepAway(FileDescriptor& lock) const;

 private:
  std::optional<std::filesystem::path> lockFile() const;

  std::filesystem::path prefix_;
  std::filesystem::path temporaryFolder_;
};

}  // namespace korvex::platform
