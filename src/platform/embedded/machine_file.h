// machine.json: what an embedded machine says about itself.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/status.h"
#include "platform/stored/key_paths.h"
#include "platform/system_info.h"

namespace korvex::platform {

struct OpenWindow {
  std::string className;
  std::string title;
};

struct MachineFile {
  std::string windows;  // "95", "98", "me", "nt4", "2000", "2000-server"
  std::string name;     // "Windows 2000 Professional"
  Family family = Family::Nt;
  VersionInfo version;
  std::string productType;
  std::string user;
  std::string computerName;
  bool administrator = true;
  int codePage = 1252;
  int oemCodePage = 437;
  std::string userKey;
  std::string windowsFolder;
  std::string systemFolder;
  std::string tempFolder;
  std::map<std::string, std::string> environment;   // names folded
  std::map<std::string, FileVersion> fileVersions;  // paths folded
  std::map<std::string, std::string> fileSystems;   // "C" to "NTFS"
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
