// Claiming a machine for a command.
#include "cli/claimed_machine.h"

namespace korvex::cli {

std::unique_ptr<platform::InstanceClaim> claim(platform::Machine& machine) {
  auto result = machine.claimInstance(platform::Wait::Yes);
  if (result) return result;
  const std::string holder = machine.claimHolder();
  throw Failure(ExitCode::Busy, "busy",
                "Korvex is open on this machine (" + machine.describe().folder + "), " +
                    (holder.empty() ? "in a window or in another command" : "by " + holder) +
                    ". Close it and try again.");
}

}  // namespace korvex::cli
