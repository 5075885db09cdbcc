// Defaults: every tweak of this machine set to what Windows had, and what that changed.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/pending_changes.h"
#include "engine/reg_worker.h"
#include "foundation/session.h"

namespace korvex::main_window {

// Captions, in the catalogue's order; of what failed with the cause.
struct DefaultsOutcome {
  std::vector<std::string> changed;
  std::vector<std::string> failed;
};

// Runs every routine that this machine has in restore-defaults mode. What waits in the banks is
// discarded: it is about boxes that no longer say it. progress is called with the percentage done.
// A person who wants the program to end after an error ends it here, too.
DefaultsOutcome restoreDefaults(foundation::Session& session, engine::RegWorker& regWorker,
                                engine::PendingChanges& pending,
                                const std::function<void(int)>& progress);

// "12 settings were reset to their defaults:" and their captions; of many the first ones.
std::string describeDefaults(const DefaultsOutcome& outcome);

}  // namespace korvex::main_window
