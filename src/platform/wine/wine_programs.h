// Starting programs of a prefix with Wine.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/machine.h"

namespace korvex::platform {

// Wait::Yes: the program's exit code; Wait::No: it was started. 50 where Wine is not installed.
Status startWithWine(const std::filesystem::path& prefix, std::string_view commandLine, Wait wait,
                     int& exitCode, std::string& message);

}  // namespace korvex::platform
