// Makes the smallest disk of an installed Windows 2000 that can be opened: make_windows_folder DIR.
#include <filesystem>
#include <iostream>

#include "support/hive_builder.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_windows_folder DIR\n";
    return 2;
  }
  namespace fs = std::filesystem;
  const fs::path drive = argv[1];
  const fs::path hives = drive / "WINNT" / "system32" / "config";
  const std::string version = "Microsoft\\Windows NT\\CurrentVersion";
  const std::string profile = "C:\\Documents and Settings\\Anna";
  korvex::test::writeHive(hives / "system", {{"Select", "", ""}, {"ControlSet001", "", ""}});
  korvex::test::writeHive(hives / "software", {{"Classes", "", ""},
                                               {version, "SystemRoot", "C:\\WINNT"},
                                               {version, "CurrentVersion", "5.0"},
                                               {version, "CurrentBuildNumber", "2195"},
                                               {version + "\\ProfileList\\S-1-5-21-1-2-3-1000",
                                                "ProfileImagePath", profile}});
  korvex::test::writeHive(hives / "default", {{"Control Panel", "", ""}, {"Software", "", ""}});
  korvex::test::writeHive(drive / "Documents and Settings" / "Anna" / "NTUSER.DAT",
                          {{"Control Panel", "", ""}, {"Software", "", ""}});
  return 0;
}
