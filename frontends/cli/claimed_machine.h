// ClaimedMachine: a machine whose claim the command took before it started the program.
//
// The claim comes first and the change of the registry second: whoever waited for another Korvex
// with the registry locked would keep that one from ending.
#pragma once

#include <memory>
#include <utility>

#include "cli/context.h"
#include "platform/common/composed_machine.h"

namespace korvex::cli {

class ClaimedMachine : public platform::ComposedMachine {
 public:
  ClaimedMachine(platform::Machine& inner, platform::MachineParts parts,
                 std::unique_ptr<platform::InstanceClaim> claim)
      : ComposedMachine(inner, parts), claim_(std::move(claim)) {}

  // Handed over once; the inner machine is not asked.
  std::unique_ptr<platform::InstanceClaim> claimInstance(platform::Wait) override {
    return std::move(claim_);
  }

 private:
  std::unique_ptr<platform::InstanceClaim> claim_;
};

// Waits a few seconds for another Korvex on the machine; throws Failure (Busy) where it stays.
std::unique_ptr<platform::InstanceClaim> claim(platform::Machine& machine);

}  // namespace korvex::cli
