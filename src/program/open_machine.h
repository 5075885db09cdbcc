// Finding and opening the machine that a person named.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/machine.h"

namespace korvex::program {

// $XDG_DATA_HOME/korvex/machines/default. Empty where the user has no folder for data.
std::filesystem::path defaultMachineFolder();

// Finds out what kind of machine a folder holds and opens it: one of Korvex' own, a Wine prefix, or
// the disk of an installed Windows. An empty folder means the default machine, which is made on
// first use. user is whose settings are meant, "" for the only user or the last one. A failure's
// message says what to do; with a machine it is a warning.
platform::OpenedMachine openMachine(const std::filesystem::path& folder, platform::OpenMode mode,
                                    const std::string& user = {});

// The words for "machine create": 95, 98, me, nt4, 2000, 2000-server.
const std::vector<std::string>& windowsNames();

// Makes a new machine from the sample of that Windows. The folder is new or empty.
platform::Status createMachine(std::string_view windows, const std::filesystem::path& folder,
                               std::string& message);

}  // namespace korvex::program
