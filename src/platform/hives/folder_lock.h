// The lock on a machine's folder that the one Korvex holds which changes it. Nothing is written:
// the lock is on the folder itself, and the kernel drops it with its holder. Only where the host
// cannot lock a folder (NFS) it is on a file in it, ".korvex-lock", which stays there empty.
#pragma once

#include <filesystem>
#include <string>

#include "platform/common/file_descriptor.h"
#include "platform/machine.h"

namespace korvex::platform {

class FolderLock {
 public:
  explicit FolderLock(std::filesystem::path folder) : folder_(std::move(folder)) {}

  // True where this object holds it already. Each object is a holder of its own, also within one
  // process. Wait::Yes tries for five seconds.
  // 170: another holds it; 3: no such folder; 50: nothing there can be locked.
  Status take(Wait wait);
  void release() { descriptor_.reset(); }
  bool held() const { return static_cast<bool>(descriptor_); }

  // Who holds it, for people: "korvex-gui (process 1234)"; "another program" where the system does
  // not tell; "" where nobody does.
  std::string holder() const;

 private:
  std::filesystem::path folder_;
  FileDescriptor descriptor_;
};

}  // namespace korvex::platform
