// StartupLine: the programs of WIN.INI's line load= or run=.
#pragma once

#include "dialogs/shell/program_line.h"
#include "dialogs/shell/startup_place.h"
#include "dialogs/shell/win_ini_line.h"

namespace korvex::dialogs {

class StartupLine : public StartupPlace {
 public:
  StartupLine(foundation::Session& session, StartupArea area, std::string_view name,
              const char* key)
      : StartupPlace(session, area, name, platform::HKEY_LOCAL_MACHINE), line_(session, key) {}

  platform::Status launched(StartupEntries& entries) override { return p_WinParse(entries); }
  platform::Status switchedOff(StartupEntries& entries) override;
  platform::Status switchOff(const StartupEntry& entry) override;
  platform::Status switchOn(const StartupEntry& entry, Replace replace) override;
  platform::Status forget(const StartupEntry& entry) override;
  platform::Status add(const std::string& path, const std::string& longPath) override;
  platform::Status finish(const PendingMove& move) override;

 private:
  platform::Status p_WinParse(StartupEntries& entries);
  StartupEntry entryOf(const std::string& written, bool on) const;
  // Writes the line, and the records with it.
  platform::Status move(const PendingMove& pending);
  platform::Status records(const PendingMove& pending);

  WinIniLine line_;
};

}  // namespace korvex::dialogs
