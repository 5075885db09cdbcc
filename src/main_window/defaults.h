// Defaults: every tweak of this machine set to what Windows had, and what that changed.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/apply.h"
#include "engine/pending_changes.h"
#include "engine/reg_worker.h"
#include "foundation/session.h"

namespace korvex::main_window {

struct DefaultsOutcome {
  std::vector<std::string> changed;  // captions, in the catalogue's order
  std::vector<engine::FailedRoutine> failed;
};

// Runs every routine that this machine has in restore-defaults mode. What waits in the banks is
// discarded: it is about boxes that no longer say it. progress is called with the percentage done.
DefaultsOutcome restoreDefaults(foundation::Session& session, engine::RegWorker& regWorker,
                                engine::PendingChanges& pending,
                                const std::function<void(int)>& progress);

// "12 settings were reset to their defaults:" and their captions; of many the first ones.
std::string describeDefaults(const DefaultsOutcome& outcome);

}  // namespace korvex::main_window
