// The registry-editor file that a restore reads, on the host or on the machine.
#pragma once

#include <string>
#include <string_view>

#include "backup/reg_difference.h"
#include "cli/backup_machine.h"
#include "cli/interrupt.h"
#include "platform/common/file_descriptor.h"
#include "platform/text/reg_names.h"

namespace korvex::cli {

class RestoreSource {
 public:
  // Opens a file of the host. Throws Failure where it cannot be read, or not twice.
  RestoreSource(BackupMachine& machine, const std::string& path, const Interrupt& interrupt);

  // For compareRegText; each time from the beginning. 1223 where the end was asked for.
  backup::RegPieces pieces();
  // The one key that all others of the file lie beneath. Throws Failure (Usage) where there is
  // none.
  backup::CompareOptions onlyKey();

  struct Import {
    platform::Status status = platform::ERROR_SUCCESS;
    std::string message;
    std::size_t refused = 0;
    std::vector<std::string> messages;  // refused lines and remarks
  };
  Import import();

 private:
  platform::Status readAll(const std::function<platform::Status(std::string_view)>& take);

  BackupMachine& machine_;
  std::string path_;
  bool onMachine_;
  const Interrupt& interrupt_;
  platform::FileDescriptor file_;
};

}  // namespace korvex::cli
