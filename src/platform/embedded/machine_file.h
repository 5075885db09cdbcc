// machine.json: what an embedded machine says about itself.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/common/machine_facts.h"
#include "platform/status.h"

namespace korvex::platform {

struct OpenWindow {
  std::string className;
  std::string title;
};

struct MachineFile : MachineFacts {
  std::string windows;  // "95", "98", "me", "nt4", "2000", "2000-server"
  std::string userKey;
  std::map<std::string, FileVersion> fileVersions;  // paths folded
  std::vector<OpenWindow> openWindows;
  std::map<std::string, std::uint32_t> initialAttributes;  // of a sample only
};

// On failure message names the file, the field and what to do; unknown fields are passed over.
Status readMachineFile(const std::filesystem::path& file, MachineFile& machine,
                       std::string& message);
// Copies a sample's file without what only samples have; everything else stays, unknown fields too.
Status copyMachineFile(const std::filesystem::path& sample, const std::filesystem::path& target,
                       std::string& message);

}  // namespace korvex::platform
