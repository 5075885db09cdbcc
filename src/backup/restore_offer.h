// RestoreOffer: something that can be restored, item by item: it says what each item would change,
// and does it for those that were chosen. A window or the command line stands in front of it.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/status.h"

namespace korvex::backup {

// How far a long piece of work is. Called with percent 0 to 100; false asks for its end: what was
// done is then taken back.
using Progress = std::function<bool(int percent)>;

// One step of a restore, as people read it.
struct RestoreChange {
  enum class Kind {
    NewKey,
    DeletedKey,
    NewValue,
    ChangedValue,
    DeletedValue,
    NewFile,
    ChangedFile,
    DeletedFile
  };
  Kind kind = Kind::ChangedValue;
  std::string place;   // the key in full, or the file's Windows path
  std::string name;    // of a value; "" is the default value
  std::string before;  // of a value, with its type: REG_SZ "x"; "" where there is none
  std::string after;
};

// "NewKey": for scripts.
const char* kindName(RestoreChange::Kind kind);
// One line: "+ HKEY_CURRENT_USER\...\Desktop  Wallpaper = REG_SZ "x"".
std::string describe(const RestoreChange& change);

struct RestoreItem {
  static constexpr std::size_t kMostChanges = 2000;  // kept; counting goes on

  std::string name;     // for scripts: "ColorConfig", ".txt"
  std::string caption;  // for people: "Color configuration"
  bool restorable = true;
  std::vector<std::string> problems;  // what is missing, damaged or does not fit, for people
  std::vector<RestoreChange> changes;
  std::size_t changeCount = 0;
};

struct RestoreOutcome {
  platform::Status status = platform::ERROR_SUCCESS;  // otherwise nothing was changed
  std::string message;                                // for people
  // Where what was overwritten has been saved: the name of a set, or a folder.
  std::string savedAs;
  bool cancelled = false;
};

class RestoreOffer {
 public:
  virtual ~RestoreOffer() = default;

  // The question that stands over it: "Restore the selected settings for Work?"
  virtual std::string question() const = 0;
  // In their order; compared with the machine when the offer was made.
  virtual const std::vector<RestoreItem>& items() const = 0;
  // chosen: one flag per item; those that are not restorable are passed over. First saves what will
  // be overwritten, then restores, as one change.
  virtual RestoreOutcome restore(const std::vector<bool>& chosen, const Progress& progress) = 0;
};

// Hands an offer from the window that makes it to the one that shows it, and the outcome back.
struct RestoreDesk {
  std::unique_ptr<RestoreOffer> offer;
  bool restored = false;  // the last offer was carried out
};

}  // namespace korvex::backup
