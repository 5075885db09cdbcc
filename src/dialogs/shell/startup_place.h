// One startup area: what Windows starts from it, and what was switched off.
//
// StartupKey (a Run key), StartupLine (a line of WIN.INI) and StartupFolders are the three kinds.
// Every change is whole: done, or nothing of it. It is not on the disk before the registry's next
// flush. What was listed is looked at again before it is changed: 2 where it is not there as it
// was.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "dialogs/shell/startup_pending.h"
#include "dialogs/shell/startup_store.h"
#include "engine/taken_away.h"
#include "platform/status.h"

namespace korvex::dialogs {

enum class StartupArea { RegRun, RegRunII, RegRunOnce, WinLoad, WinRun, StartUp };

struct StartupEntry {
  StartupArea area = StartupArea::RegRun;
  bool on = true;
  std::string name;     // of the value or the file; of a line's program without quotes
  std::string text;     // its line in a list
  std::string command;  // what is started
  std::string record;   // of one that is off: its name in the store
  std::string origin;   // the key, line or folder it stands in or came from, for people
  std::string path;     // of a file: where it lies; "" where it is gone
  bool allUsers = false;
  bool isFile = false;     // command is the path of a file, not a command line
  engine::RawValue value;  // of a key or a store
};
using StartupEntries = std::vector<StartupEntry>;

// What stands in the place of an entry that is put back: refused with 183, or switched off or kept
// with what was deleted.
enum class Replace { No, Yes };

class StartupPlace {
 public:
  StartupPlace(foundation::Session& session, StartupArea area, std::string_view name,
               platform::HKEY root)
      : session_(session), area_(area), name_(name), store_(session, root, name) {}
  virtual ~StartupPlace() = default;
  StartupPlace(const StartupPlace&) = delete;
  StartupPlace& operator=(const StartupPlace&) = delete;

  virtual platform::Status launched(StartupEntries& entries) = 0;
  virtual platform::Status switchedOff(StartupEntries& entries) = 0;
  virtual platform::Status switchOff(const StartupEntry& entry) = 0;
  virtual platform::Status switchOn(const StartupEntry& entry, Replace replace) = 0;
  // For good, but kept with what was deleted.
  virtual platform::Status forget(const StartupEntry& entry) = 0;
  // path as it is to be written, and the file's own. 183 where it starts already.
  virtual platform::Status add(const std::string& path, const std::string& longPath) = 0;

  // What was deleted here, the last first.
  std::vector<engine::TakenAway::Item> deleted();
  // 183 where something stands there by now.
  virtual platform::Status takeBack(const engine::TakenAway::Item& item);
  // The end of a move that was interrupted.
  virtual platform::Status finish(const PendingMove& move);

 protected:
  // Whether the record is about something of this area.
  virtual bool isHere(const engine::TakenAway::Item& item) const;

  foundation::Session& session_;
  const StartupArea area_;
  const std::string name_;
  StartupStore store_;
};

// One of the Run keys.
class StartupKey : public StartupPlace {
 public:
  StartupKey(foundation::Session& session, StartupArea area, std::string_view name,
             platform::HKEY root, std::string_view key)
      : StartupPlace(session, area, name, root), key_(key) {}

  platform::Status launched(StartupEntries& entries) override;
  platform::Status switchedOff(StartupEntries& entries) override;
  platform::Status switchOff(const StartupEntry& entry) override;
  platform::Status switchOn(const StartupEntry& entry, Replace replace) override;
  platform::Status forget(const StartupEntry& entry) override;
  platform::Status add(const std::string& path, const std::string& longPath) override;

 private:
  bool isHere(const engine::TakenAway::Item& item) const override;
  platform::Status p_UpdateRunOnceData(const StartupEntry& entry, bool bSkipWrite,
                                       const std::function<platform::Status()>& write,
                                       const std::function<platform::Status()>& remove);
  StartupEntry entryOf(const NamedValue& value, bool on) const;

  std::string key_;
};

// "notepad.exe" of "C:\WINDOWS\notepad.exe".
std::string lastPart(std::string_view path);

}  // namespace korvex::dialogs
