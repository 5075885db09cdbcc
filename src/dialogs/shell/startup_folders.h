// StartupFolders: the Startup folders of the user and of all users, and the files moved out of
// them.
//
// A file that is switched off lies in Startup\Backup under the program's folder; its record is
// named like it there, and tells where it came from. What is deleted for good goes to
// Startup\Deleted.
#pragma once

#include "dialogs/shell/startup_place.h"

namespace korvex::dialogs {

class StartupFolders : public StartupPlace {
 public:
  StartupFolders(foundation::Session& session, std::string_view name);

  platform::Status launched(StartupEntries& entries) override { return p_ParseStartupDir(entries); }
  platform::Status switchedOff(StartupEntries& entries) override;
  platform::Status switchOff(const StartupEntry& entry) override;
  platform::Status switchOn(const StartupEntry& entry, Replace replace) override;
  platform::Status forget(const StartupEntry& entry) override;
  // Makes a shortcut in the user's folder.
  platform::Status add(const std::string& path, const std::string& longPath) override;
  platform::Status takeBack(const engine::TakenAway::Item& item) override;
  platform::Status finish(const PendingMove& move) override;

  // 95, 98 and Me without profiles may have one folder for both.
  bool isOneFolder() const;
  // Moves what earlier versions of the program switched off into the present Backup. What cannot be
  // moved stays and is traced; until then it is listed where it lies.
  void p_ConsolidateStartupBackup();

 private:
  platform::Status p_ParseStartupDir(StartupEntries& entries);
  platform::Status listFolder(const std::string& folder, bool allUsers, StartupEntries& entries);
  platform::Status listBackup(const std::string& folder, const std::vector<NamedValue>& records,
                              StartupEntries& entries);
  StartupEntry switchedOffEntry(const std::string& fileName, const std::string& cameFrom) const;
  bool isOfAllUsers(const std::string& cameFrom) const;
  // The name, or one with a number, that neither Backup nor Deleted has.
  std::string freeFileName(const std::string& wanted) const;
  platform::Status move(const PendingMove& pending);
  platform::Status records(const PendingMove& pending);
  platform::Status sameFiles(const std::string& one, const std::string& other, bool& same) const;
  platform::Status linkTo(const std::string& path, const std::string& shortPath,
                          std::string& bytes) const;
  std::string ownFolder(const char* folder) const;
  std::string path(const char* folder, const std::string& fileName) const;

  std::string user_;
  std::string common_;
};

}  // namespace korvex::dialogs
