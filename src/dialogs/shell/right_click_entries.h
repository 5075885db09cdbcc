// RightClickEntries: what Korvex adds to the menus that Explorer shows for file types.
//
// An entry is a verb of a class of HKEY_CLASSES_ROOT, with its menu text and its command. Each is
// recorded under SOFTWARE\Korvex\Right_Click as a string list named "class\verb": "Text=...",
// "Command=..." and a "Type=..." for each file type that it was added for. Only what is recorded
// there is listed and removed.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/taken_away.h"
#include "foundation/session.h"
#include "platform/status.h"

namespace korvex::dialogs {

constexpr std::string_view kUnknownType = "UNKNOWN";  // files of unregistered types

struct RightClickEntry {
  std::string className;
  std::string verb;
  std::string text;                // of the menu, with its "&"
  std::string command;             // "C:\Tools\x.exe" "%1", both in quotes
  std::vector<std::string> types;  // ".TXT"

  std::string line() const;        // of a list: class and verb, three blanks between them
  std::string key() const;         // below HKEY_CLASSES_ROOT
  std::string program() const;     // the path in the command
  std::string p_FillType() const;  // the types for people: "Unknown" where there is none
  bool operator==(const RightClickEntry&) const = default;
};

class RightClickEntries {
 public:
  explicit RightClickEntries(foundation::Session& session);

  // The file types that the wizard offers, in its order.
  static std::span<const std::string_view> DetermineRightClickOptions();

  // What is wrong with an addition.
  struct Refusal {
    enum class Field { Text, Program } field;
    std::string message;
  };
  std::optional<Refusal> refusalOf(std::string_view type, std::string_view text,
                                   std::string_view program) const;
  // As it is written in a command: without quotes and blanks around it, with backslashes only.
  static std::string tidiedPath(std::string_view typed);

  // The class whose menu files of that type have. registered tells whether the type names it.
  platform::Status classOf(std::string_view type, std::string& className, bool& registered) const;

  struct Plan {
    RightClickEntry entry;
    // Korvex's own entry with that text, which it replaces.
    std::optional<RightClickEntry> replaced;
    bool registered = true;  // as classOf
  };
  // Which entry the addition makes. The verb is never one of another program, nor one that Windows
  // gives a meaning of its own.
  platform::Status plan(std::string_view type, const std::string& text, std::string_view program,
                        Plan& plan) const;

  // In the order of the records. bmpfile and Paint.Picture are one class here.
  platform::Status p_DetermineRightClickEntries(std::vector<RightClickEntry>& entries) const;

  enum class State { AsAdded, Changed, Missing };
  // How the entry stands in the registry.
  platform::Status stateOf(const RightClickEntry& entry, State& state) const;

  // Steps of a change (engine/at_once.h). What another program has changed since is kept
  // (engine/taken_away.h) before it goes. remove: 2 where the entry is not recorded.
  platform::Status add(const RightClickEntry& entry);
  platform::Status remove(const RightClickEntry& entry);

  // What was kept, the last first; putting it back is a step of a change too.
  std::vector<engine::TakenAway::Item> kept() const;
  platform::Status takeBack(const engine::TakenAway::Item& item);

 private:
  platform::Status records(std::vector<RightClickEntry>& entries) const;
  platform::Status hasKey(const std::string& key, bool& there) const;
  platform::Status isTaken(const std::vector<RightClickEntry>& own, const std::string& className,
                           const std::string& verb, bool& taken) const;
  platform::Status freeVerb(const std::vector<RightClickEntry>& own, RightClickEntry& entry) const;
  platform::Status wouldLead(const RightClickEntry& entry, bool& leads) const;
  platform::Status setAside(const RightClickEntry& entry, State& state);
  platform::Status clear(const std::string& className, const RightClickEntry& entry);
  platform::Status keep(const std::string& key, const std::string& name);
  platform::Status dropEmpty(const std::string& className);

  foundation::Session& session_;
  engine::TakenAway ofMachine_;  // below HKEY_LOCAL_MACHINE\SOFTWARE\Classes
  engine::TakenAway ofUser_;     // what only HKEY_CLASSES_ROOT shows: the classes of the user
};

}  // namespace korvex::dialogs
