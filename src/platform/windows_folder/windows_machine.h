// The disk of an installed Windows NT, 2000 or later of that family as a machine.
#pragma once

#include <filesystem>
#include <string>

#include "platform/machine.h"

namespace korvex::platform {

// folder is the system drive, mounted or copied, or its Windows folder; user the name of one who
// has a profile there, "" for the one who used it last. The registry is the hives of the machine
// and of that user; the first change of a hive leaves "….korvex-before" beside it. A hive that must
// not be written (not shut down cleanly, damaged, of a foreign version, read-only) refuses
// OpenMode::ReadWrite (19) with the reason. 50: Windows 95, 98 or Me.
OpenedMachine openWindowsMachine(const std::filesystem::path& folder, OpenMode mode,
                                 const std::string& user);

}  // namespace korvex::platform
