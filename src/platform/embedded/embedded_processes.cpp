// Programs of an embedded machine.
#include "platform/embedded/embedded_processes.h"

#include <fmt/format.h>

namespace korvex::platform {

Status EmbeddedProcesses::run(std::string_view commandLine, int& exitCode, std::string& message) {
  if (editor_.isMeant(commandLine)) return editor_.run(commandLine, exitCode, message);
  exitCode = 1;
  if (commandLine.empty()) return ERROR_INVALID_PARAMETER;
  return refuse(commandLine, message);
}

Status EmbeddedProcesses::refuse(std::string_view commandLine, std::string& message) {
  message = fmt::format("{} was not started: this machine does not run programs.", commandLine);
  // On a machine that is open for reading nothing is recorded.
  const Status status = events_.add("program", commandLine);
  if (status != ERROR_SUCCESS && status != ERROR_WRITE_PROTECT) return status;
  return ERROR_NOT_SUPPORTED;
}

Status EmbeddedProcesses::ShellExecuteA(std::string_view /*verb*/, std::string_view file,
                                        std::string_view parameters, std::string_view /*folder*/,
                                        std::string& message) {
  int exitCode = 0;
  return run(commandLineOf(file, parameters), exitCode, message);
}

}  // namespace korvex::platform
