// The command line, as a function: everything "korvex" does between its arguments and its exit
// code.
#pragma once

#include <string>
#include <vector>

#include "cli/context.h"

namespace korvex::cli {

// args without the program's name. The environment is read for KORVEX_MACHINE and the folders that
// program/open_machine.h names; nothing else is global.
int runCli(std::vector<std::string> args, const Streams& streams);

}  // namespace korvex::cli
