// Starting programs on a machine.
#pragma once

#include <string>
#include <string_view>

#include "platform/status.h"

namespace korvex::platform {

class Processes {
 public:
  virtual ~Processes() = default;

  // Runs a command line to its end. "regedit /e FILE [KEY]" and "regedit /s FILE" are carried out
  // by the machine's own registry editor wherever Windows' cannot run; exitCode is the program's.
  // A machine that cannot run the program says so with ERROR_NOT_SUPPORTED and message.
  virtual Status run(std::string_view commandLine, int& exitCode, std::string& message) = 0;
  // Starts a program or opens a document and does not wait (ShellExecuteA). Statuses as above.
  virtual Status ShellExecuteA(std::string_view verb, std::string_view file,
                               std::string_view parameters, std::string_view folder,
                               std::string& message) = 0;
};

}  // namespace korvex::platform
