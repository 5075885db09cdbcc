// The profile-folder record: one path for each shell folder.
#pragma once

#include <string>

namespace korvex::foundation {

// Paths without a trailing backslash, but PreProfilePath, which has one.
struct ProfileFolders {
  std::string PreProfilePath;  // holds the profiles of all users
  std::string SendToPath;
  std::string RecentPath;
  std::string StartUpPath;
  std::string StartUpPathEx;  // what starts for every user
  std::string StartMenuPath;
  std::string DesktopPath;
  std::string AppDataPath;
  std::string PersonalPath;
  std::string ProgramPath;
  std::string NetHoodPath;
  std::string PrintHoodPath;
  std::string TemplatesPath;
  std::string CachePath;
  std::string HistoryPath;
  std::string FontsPath;
  std::string FavoritesPath;
  std::string CookiesPath;
  std::string IE5ContentPath;
  std::string LocalAppDataPath;
  std::string LocalSettPath;
  std::string CommMenuPath;
  std::string CommStartMenuPath;
  std::string CommAppDataPath;
  std::string CommStartUpPath;
  std::string CommDesktopPath;
  std::string CommSendToPath;
  std::string CommPersonalPath;
  std::string CommProgramsPath;
};

}  // namespace korvex::foundation
