// The apply pipeline: runs the routine of every pending change of a bank.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/pending_changes.h"
#include "engine/reg_worker.h"

namespace korvex::engine {

struct FailedRoutine {
  std::string property;         // "" where the list of markers could not be read
  platform::Status status = 0;  // 0: no routine of that name, or it raised an error
};

// Runs the bank's markers, taken once before any routine runs. A failing routine does not stop the
// others; the result names those that failed. done, where given, is called after each routine.
std::vector<FailedRoutine> applyBank(Bank bank, foundation::Session& session,
                                     PendingChanges& pending, RegWorker& worker,
                                     const std::function<void()>& done = {});

// The sentence that tells a person what could not be written and what to do; "" for none.
std::string describeFailures(const std::vector<FailedRoutine>& failures);

// The end of an Apply: brings the changes to the disk and tells the person what could not be done,
// all in one message. True where there was nothing to tell.
bool finishApply(foundation::Session& session, const std::vector<FailedRoutine>& failures,
                 const std::vector<std::string>& furtherTrouble = {});

// "2 changes waiting": for status bars.
std::string waitingText(int changes);

// "1 change has not been applied. Leave Korvex and discard it?" True where that is fine: nothing
// waits, the person says so, or wants no such questions.
bool mayDiscard(foundation::Session& session, int changes, std::string_view leaving);

}  // namespace korvex::engine
