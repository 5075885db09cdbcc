// What the commands for backed-up keys share.
#pragma once

#include "cli/commands.h"

namespace korvex::cli {

void addRestoreCommand(CLI::App& app, Run& run);

}  // namespace korvex::cli
