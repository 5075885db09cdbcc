// What the two halves of the reg commands share.
#pragma once

#include "cli/commands.h"

namespace korvex::cli {

void addRegFileCommands(CLI::App& group, Run& run);  // import, export

}  // namespace korvex::cli
