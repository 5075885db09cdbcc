// Finding an installation of Windows NT, 2000 or later in a folder: where its Windows folder, its
// hives and its users' hives lie. Nothing is opened but for looking.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/status.h"

namespace korvex::platform {

// One who has a profile here.
struct InstalledUser {
  std::string sid;      // "S-1-5-21-...-500"
  std::string name;     // the last part of the profile's folder: "Administrator"
  std::string profile;  // as the machine names it: "C:\Documents and Settings\Administrator"
  std::filesystem::path folder;   // of the profile, on the host
  std::filesystem::path hive;     // NTUSER.DAT
  std::filesystem::path classes;  // UsrClass.dat, empty where there is none
  std::int64_t used = 0;          // when the hive was last written, seconds since 1970
};

struct Installation {
  std::filesystem::path drive;                          // host folder of the system drive
  char letter = 'C';                                    // of that drive on the machine
  std::filesystem::path windows;                        // host folder: drive/WINNT
  std::string windowsFolder;                            // "C:\WINNT"
  std::filesystem::path config;                         // host folder: system32/config
  std::filesystem::path system, software, defaultUser;  // the hives, with the names as they stand
  std::vector<InstalledUser> users;  // those whose hive is there, the most recently used first
  std::string evidence;              // how it was recognised, for people
};

enum class FolderKind { Unknown, NtFamily, Windows9x };

// What a folder holds, told by its files alone: the system drive of an installation or its Windows
// folder, in any case of the names. Windows9x: SYSTEM.DAT or USER.DAT in the Windows folder.
FolderKind kindOfWindowsFolder(const std::filesystem::path& folder);

// Reads what is needed from the hives. On failure message says what is missing and what to do.
// Links on the way are not followed.
Status findInstallation(const std::filesystem::path& folder, Installation& installation,
                        std::string& message);

}  // namespace korvex::platform
