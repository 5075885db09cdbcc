// RegistryBacker: saves registry keys as registry-editor files, and loads such files back.
//
// The registry editor of the machine does both, started hidden with a command file. The class
// builds the commands, gives the editor paths that it understands (short names; the network folder
// behind a mapped drive), waits, and looks whether the file has come. An export is complete before
// it has its name: the editor writes to a name of its own beside it.
//
// A backup is whole or it is none: what the editor had to leave out fails it.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/session.h"

namespace korvex::backup {

// One key with everything beneath it, and the Windows path of its file.
struct KeyBackup {
  platform::HKEY root = 0;
  std::string subKey;
  std::string file;
};

struct KeyBackupResult {
  bool saved = false;
  platform::Status status = platform::ERROR_SUCCESS;  // 2: no such key
  std::string message;                                // for people; "" where it was saved
};

class RegistryBacker {
 public:
  explicit RegistryBacker(foundation::Session& session) : session_(session) {}

  // A file of that name is replaced; after false it is what it was. HKEY_USERS cannot be backed up.
  bool P_rbBackupRegistryKey(platform::HKEY hKeyRoot, std::string_view sSubKey,
                             std::string_view sFile);
  // Several with one start of the editor; a result for each, in order.
  std::vector<KeyBackupResult> backupKeys(std::span<const KeyBackup> backups);

  // Adds the file's keys and values to the registry: what is there and not in the file stays. True
  // where the editor has taken all of it.
  bool P_rbRestoreRegistryKey(std::string_view sFile);

  // The short (8.3) form of an existing path; the drive letter of a mapped network drive is first
  // replaced by its network folder. A path that is not there comes back with what could be done.
  std::string P_rbGetShortName(std::string_view sPath);

  // The text before the first Chr(0).
  static std::string StripNulls(std::string_view s);

  // Of the last call that answered false, for people.
  const std::string& lastMessage() const { return last_.message; }
  platform::Status lastStatus() const { return last_.status; }

  // Called while a file is awaited; false ends the waiting.
  std::function<bool()> doEvents;

 private:
  struct Export;

  std::string mappedPath(std::string_view path);
  std::string p_rbParseForShortFileNames(std::string_view path);
  Export prepare(const KeyBackup& backup);
  void runAll(std::vector<Export>& exports);
  platform::Status p_rbWriteRegFile(std::string_view commands, std::string& commandFile);
  // The list of "name=" and result, separated by Chr(0), as the trace has it.
  std::string p_rbRunBatchFileAndCleanUp(std::string_view commands, std::string_view files,
                                         std::string& message);
  bool awaitFile(const std::string& file, bool failed);
  KeyBackupResult finish(const Export& one, const std::string& message);

  foundation::Session& session_;
  KeyBackupResult last_;
};

}  // namespace korvex::backup
