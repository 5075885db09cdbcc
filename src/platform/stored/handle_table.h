// Open keys by their handles.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/registry.h"

namespace korvex::platform {

struct OpenKeyEntry {
  std::int64_t key = 0;    // kGone: created in a change that was rolled back
  std::int64_t under = 0;  // the key that this one lies over
  AccessMask access = 0;
  bool fixed = false;  // opened by a name that stands for another key, and cannot be deleted
};

// Handles look like Windows' own: multiples of four. A closed handle's number is not given out
// again before its place has been used 512 times, so that a stale one is noticed.
class HandleTable {
 public:
  static constexpr std::int64_t kGone = -1;

  // 0 where a million keys are open.
  HKEY add(const OpenKeyEntry& entry);
  // Null for a handle that is not open.
  const OpenKeyEntry* find(HKEY handle) const;
  bool remove(HKEY handle);
  // Marks what was opened on keys from this one on.
  void loseKeysFrom(std::int64_t key);

 private:
  struct Place {
    OpenKeyEntry entry;
    std::uint32_t generation = 0;
    bool open = false;
  };
  const Place* placeOf(HKEY handle) const;

  std::vector<Place> places_;
  std::vector<std::uint32_t> unused_;
};

}  // namespace korvex::platform
