// The subkeys of the keys that are being enumerated, in their order.
#pragma once

#include <cstdint>
#include <deque>
#include <list>
#include <optional>

namespace korvex::platform {

struct NameStatistics {
  std::size_t longest = 0;      // in bytes
  std::size_t longestKeys = 0;  // how many names are that long
};

struct ChildList {
  std::int64_t parent = 0;
  std::deque<std::int64_t> keys;
  std::optional<NameStatistics> names;
  std::size_t lastIndex = 0;  // where the last enumeration was
};

// Keeps the lists that were used last, bounded in number and size. A deletion at either end or
// where the enumeration stands takes constant time, so loops that delete all subkeys stay quick.
class ChildLists {
 public:
  // Null where the key has no list.
  ChildList* find(std::int64_t parent);
  ChildList& add(std::int64_t parent, std::deque<std::int64_t> keys);
  void removeChild(std::int64_t parent, std::int64_t key, std::size_t nameBytes);
  void drop(std::int64_t parent);
  void clear();

 private:
  std::list<ChildList> lists_;  // the last used first
  std::size_t keys_ = 0;
};

}  // namespace korvex::platform
