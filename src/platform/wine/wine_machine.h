// A Wine prefix as a machine.
#pragma once

#include <filesystem>
#include <string>

#include "platform/machine.h"

namespace korvex::platform {

// True where system.reg and user.reg stand in the folder, and dosdevices or drive_c.
bool looksLikeWinePrefix(const std::filesystem::path& folder);

// Version, user and folders are those that the prefix is set to; drives are those of dosdevices.
// While the prefix's server runs, OpenMode::ReadWrite is refused (170) and so is every change of a
// machine that was opened before. user is the prefix's own or "". Programs are started with "wine"
// where it is installed. A message with an opened machine is a warning.
OpenedMachine openWineMachine(const std::filesystem::path& folder, OpenMode mode,
                              const std::string& user);

}  // namespace korvex::platform
