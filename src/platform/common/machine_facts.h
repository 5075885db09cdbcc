// What a machine is known to be: its Windows, its names and its folders.
#pragma once

#include <map>
#include <string>

#include "platform/system_info.h"

namespace korvex::platform {

enum class Family { Nt, NineX };

struct MachineFacts {
  std::string name;  // "Windows 2000 Professional"
  Family family = Family::Nt;
  VersionInfo version;
  std::string productType;  // "WinNT", "ServerNT", "LanmanNT"; "" on 95, 98 and Me
  std::string user;
  std::string computerName;
  bool administrator = true;
  int codePage = 1252;
  int oemCodePage = 437;
  std::string windowsFolder;  // Windows paths
  std::string systemFolder;
  std::string tempFolder;
  std::map<std::string, std::string> environment;  // names folded
  std::map<std::string, std::string> fileSystems;  // "C" to "NTFS"
};

// "5.0.2195", for people.
std::string versionText(const MachineFacts& facts);

}  // namespace korvex::platform
