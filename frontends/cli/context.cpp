// Opening the machine that a command is for.
#include "cli/context.h"

#include <ostream>

#include "cli/admission.h"
#include "program/open_machine.h"
#include "program/recent_machines.h"

namespace korvex::cli {

using platform::Status;

Failure machineFailure(Status status, const std::string& message) {
  switch (status) {
    case platform::ERROR_WRITE_PROTECT:
      return {ExitCode::Busy, "read-only", message};
    case platform::ERROR_BUSY:
    case platform::ERROR_SHARING_VIOLATION:
      return {ExitCode::Busy, "busy", message};
    default:
      return {ExitCode::Failed, "failed", message};
  }
}

std::unique_ptr<platform::Machine> Context::openMachine(platform::OpenMode mode) const {
  auto machine = openUnasked(mode);
  admit(*this, *machine);
  return machine;
}

std::unique_ptr<platform::Machine> Context::openUnasked(platform::OpenMode mode) const {
  platform::OpenedMachine opened = program::openMachine(machineFolder, mode, user);
  if (opened.machine) {
    if (!opened.message.empty()) note("Warning: " + opened.message);
    if (!machineFolder.empty()) program::rememberMachine(machineFolder);
    return std::move(opened.machine);
  }
  // What is there and cannot be had now is another thing than nothing there.
  const bool there = opened.status == platform::ERROR_DISK_FULL ||
                     machineFailure(opened.status, "").code() == ExitCode::Busy;
  if (there) throw machineFailure(opened.status, opened.message);
  throw Failure(ExitCode::NoMachine, "no-machine", opened.message);
}

void Context::note(std::string_view text) const { err << text << '\n'; }

}  // namespace korvex::cli
