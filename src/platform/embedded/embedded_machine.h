// The embedded machine: one folder with machine.json, registry.db (SQLite) and a folder per drive.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/machine.h"

namespace korvex::platform {

// Read changes nothing in the folder, not even a time stamp, and sees the registry as it was when
// it was opened. ReadWrite sees what others commit. Several may be open at once, in one process or
// in many. 19: the folder cannot be written; 1009: damaged; 1017: no registry of Korvex's.
OpenedMachine openEmbeddedMachine(const std::filesystem::path& folder, OpenMode mode);

// True where both machine.json and registry.db stand in the folder.
bool looksLikeEmbeddedMachine(const std::filesystem::path& folder);

// Makes a machine from a sample: machine.json, registry/*.reg in the order of their names and the
// drive_? folders. The folder is whole or not there; one that exists must be empty (183).
Status createEmbeddedMachine(const std::filesystem::path& sample,
                             const std::filesystem::path& folder, std::string& message);

// What was asked of a machine that it cannot carry out by itself.
struct MachineEvent {
  std::int64_t at = 0;  // seconds since 1970, UTC
  std::string kind;     // "restart" or "program"
  std::string detail;   // the EWX_ flags in decimal, or the command line
};

// The last hundred requests, oldest first.
Status readMachineEvents(const std::filesystem::path& folder, std::vector<MachineEvent>& events);

}  // namespace korvex::platform
