// UninstallEntries: what Windows' Add/Remove Programs lists, without a window. Entries are read
// afresh at each call; what is removed is kept and can be taken back.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/raw_value.h"
#include "engine/taken_away.h"
#include "foundation/session.h"

namespace korvex::dialogs {

struct UninstallEntry {
  std::string subKey;
  std::string name;  // what the panel shows
  std::string text;  // of a list: the name, and the key too where another entry has the name
  std::string commandValue;  // that supplies the command, or would
  engine::RawValue command;  // REG_NONE where it is missing

  bool operator==(const UninstallEntry& other) const;
};

// The file that an uninstall command needs, and whether the machine has it.
struct UninstallProgram {
  enum class State { Found, Missing, Unknown };
  std::string file;        // "" where the command names none
  std::string parameters;  // of the command, as they stand
  State state = State::Unknown;
  std::string start;  // what to start: the file, but for a library that another program runs
};

class UninstallEntries {
 public:
  explicit UninstallEntries(foundation::Session& session);

  static std::string keyOf(std::string_view subKey);  // of HKEY_LOCAL_MACHINE

  // Those with a display text, by that text.
  platform::Status read(std::vector<UninstallEntry>& entries) const;
  // Whether the machine has the entry as it is here. The status is that of reading.
  platform::Status isAsShown(const UninstallEntry& entry, bool& same) const;
  // As Windows would read it: the variables of a REG_EXPAND_SZ are filled in.
  std::string commandOf(const UninstallEntry& entry) const;
  UninstallProgram programOf(const UninstallEntry& entry) const;

  // Steps of a change (engine/at_once.h).
  platform::Status remove(const UninstallEntry& entry);
  // Text types stay what they are. 13 where something else stands there.
  platform::Status edit(const UninstallEntry& entry, const std::string& command);
  std::vector<engine::TakenAway::Item> removed() const { return taken_.items(); }
  platform::Status takeBack(const engine::TakenAway::Item& item) { return taken_.takeBack(item); }

  platform::Status start(const UninstallEntry& entry, std::string& message) const;

 private:
  platform::Status readEntry(const std::string& subKey, UninstallEntry& entry) const;
  std::string found(const std::string& file) const;

  foundation::Session& session_;
  engine::TakenAway taken_;
};

}  // namespace korvex::dialogs
