// TakenAway: keys and values that a window deleted, kept so that the person can have them back.
//
// They stand in the program's own area, below SOFTWARE\Korvex\Deleted and the area of the window,
// in the root that they were taken from: what a user had comes back to that user. Keeping and
// deleting are steps of one change of the registry: a kill leaves both or neither.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/tweak.h"
#include "foundation/session.h"
#include "platform/status.h"

namespace korvex::engine {

class TakenAway {
 public:
  // The root of what is deleted, and the name of the window's area ("Uninstall").
  TakenAway(foundation::Session& session, Root root, std::string_view area);

  struct Item {
    std::string id;    // of the record
    std::string name;  // for people
    std::string key;   // where it was
    bool isValue = false;
    std::string value;  // its name, of a value
    std::string when;   // "2026-11-22 14:05", local time
  };
  // The last deleted first.
  std::vector<Item> items() const;

  // Steps of a change (engine/at_once.h): keeps it under that name, and deletes it. 2 where it is
  // not there; then nothing is kept. More than a hundred records are not kept: the oldest goes.
  platform::Status removeTree(std::string_view key, std::string_view name);
  platform::Status removeValue(std::string_view key, std::string_view value, std::string_view name);

  // A step of a change: puts it back where it was, with types and bytes, and forgets it. 183 where
  // something stands there by now; then nothing is done.
  platform::Status takeBack(const Item& item);

 private:
  std::string path(std::string_view id) const;
  platform::Status record(std::string& content, std::string_view key, const std::string* value,
                          std::string_view name);
  platform::Status forgetOldest();

  foundation::Session& session_;
  Root root_;
  std::string area_;  // the key of the records
};

}  // namespace korvex::engine
