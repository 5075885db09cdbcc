// Files that a backup command writes: on the host or on the machine, whole or not at all.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "cli/backup_machine.h"

namespace korvex::cli {

class OutputFile {
 public:
  // What was not committed leaves nothing behind.
  virtual ~OutputFile() = default;

  // The first failure stays.
  virtual platform::Status write(std::string_view bytes) = 0;
  // From now on the file stands under its name.
  virtual platform::Status commit() = 0;
  // After a commit: removes the file again, where none stood there before.
  virtual void takeBack() = 0;
};

// Throws Failure where the file cannot be made, or exists and may not be replaced. what: "The
// backup", for the message.
std::unique_ptr<OutputFile> makeFile(BackupMachine& machine, const std::string& path,
                                     platform::Overwrite overwrite, std::string_view what);

// Throws Failure where a file of that name exists.
void refuseExisting(bool exists, const std::string& path, platform::Overwrite overwrite,
                    std::string_view what);

}  // namespace korvex::cli
