// The key that a registry-editor file is at, with the open keys above it.
#pragma once

#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/text/reg_names.h"

namespace korvex::platform {

// Creates or opens one key after the other, each relative to the deepest open key above it: a file
// lists keys depth first, and a path from the root costs a look-up for each of its parts.
class RegKeyCursor {
 public:
  explicit RegKeyCursor(Registry& registry) : registry_(registry) {}
  ~RegKeyCursor() { forget(); }
  RegKeyCursor(const RegKeyCursor&) = delete;
  RegKeyCursor& operator=(const RegKeyCursor&) = delete;

  Status go(const KeyPath& key);
  // The key of the last go() that succeeded.
  HKEY current() const { return levels_.empty() ? root_ : levels_.back().key; }
  // Closes all: what is open may have been deleted.
  void forget();

 private:
  struct Level {
    std::size_t length;  // of the part of path_ that leads here
    HKEY key;
  };
  bool leadsTo(const Level& level, std::string_view path) const;
  Status descend(std::size_t end);

  Registry& registry_;
  HKEY root_ = 0;
  std::string path_;
  std::vector<Level> levels_;
};

}  // namespace korvex::platform
