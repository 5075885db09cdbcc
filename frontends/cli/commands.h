// The groups of commands, one file each. A group adds its commands to the parser; parsing a command
// leaves in run what is to be done.
#pragma once

#include <CLI/CLI.hpp>

#include "cli/context.h"

namespace korvex::cli {

using AddCommands = void (*)(CLI::App& app, Run& run);

void addMachineCommands(CLI::App& app, Run& run);
void addListCommand(CLI::App& app, Run& run);
void addShowCommand(CLI::App& app, Run& run);
void addSetCommand(CLI::App& app, Run& run);
void addRegCommands(CLI::App& app, Run& run);
void addBackupCommands(CLI::App& app, Run& run);
void addSetOfCommands(CLI::App& app, Run& run);
void addAssociationCommands(CLI::App& app, Run& run);
void addContextMenuCommands(CLI::App& app, Run& run);
void addDrivesCommands(CLI::App& app, Run& run);
void addStartupCommands(CLI::App& app, Run& run);
void addUninstallCommands(CLI::App& app, Run& run);
void addShellFolderCommands(CLI::App& app, Run& run);
void addPasswordCommands(CLI::App& app, Run& run);
void addFormCommands(CLI::App& app, Run& run);
void addCompletionCommand(CLI::App& app, Run& run);

// A command without a function of its own: it needs one of its subcommands.
CLI::App* addGroup(CLI::App& parent, const char* name, const char* help);
// A command; examples end its help.
CLI::App* addCommand(CLI::App& parent, const char* name, const char* help, const char* examples);

}  // namespace korvex::cli
