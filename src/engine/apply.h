// The apply pipeline: runs the routine of every pending change of a bank.
#pragma once

#include <string>
#include <vector>

#include "engine/pending_changes.h"
#include "engine/reg_worker.h"

namespace korvex::engine {

struct FailedRoutine {
  std::string property;         // "" where the list of markers could not be read
  platform::Status status = 0;  // 0: no routine of that name, or it raised an error
};

// Runs the bank's markers, taken once before any routine runs. A failing routine does not stop the
// others; the result names those that failed.
std::vector<FailedRoutine> applyBank(Bank bank, foundation::Session& session,
                                     PendingChanges& pending, RegWorker& worker);

// The sentence that tells a person what could not be written and what to do; "" for none.
std::string describeFailures(const std::vector<FailedRoutine>& failures);

}  // namespace korvex::engine
