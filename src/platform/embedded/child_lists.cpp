// The lists of subkeys, the last used first.
#include "platform/embedded/child_lists.h"

#include <algorithm>
#include <utility>

namespace korvex::platform {
namespace {

constexpr std::size_t kMostLists = 64;
constexpr std::size_t kMostKeys = 1 << 19;

// Near where the enumeration stands first, then at the ends, then anywhere.
std::size_t indexOf(const ChildList& list, std::int64_t key) {
  const auto& keys = list.keys;
  const auto isAt = [&](std::size_t index) { return index < keys.size() && keys[index] == key; };
  for (const std::size_t index : {list.lastIndex, std::size_t{0}, keys.size() - 1}) {
    if (isAt(index)) return index;
  }
  return static_cast<std::size_t>(std::find(keys.begin(), keys.end(), key) - keys.begin());
}

}  // namespace

ChildList* ChildLists::find(std::int64_t parent) {
  const auto found = std::find_if(lists_.begin(), lists_.end(),
                                  [&](const ChildList& list) { return list.parent == parent; });
  if (found == lists_.end()) return nullptr;
  lists_.splice(lists_.begin(), lists_, found);
  return &lists_.front();
}

ChildList& ChildLists::add(std::int64_t parent, std::deque<std::int64_t> keys) {
  keys_ += keys.size();
  lists_.push_front({parent, std::move(keys), std::nullopt, 0});
  while (lists_.size() > 1 && (lists_.size() > kMostLists || keys_ > kMostKeys)) {
    keys_ -= lists_.back().keys.size();
    lists_.pop_back();
  }
  return lists_.front();
}

void ChildLists::removeChild(std::int64_t parent, std::int64_t key, std::size_t nameBytes) {
  ChildList* const list = find(parent);
  if (list == nullptr) return;
  const std::size_t index = list->keys.empty() ? 0 : indexOf(*list, key);
  if (index == list->keys.size()) return;
  list->keys.erase(list->keys.begin() + static_cast<std::ptrdiff_t>(index));
  --keys_;
  if (list->names && list->names->longest == nameBytes && --list->names->longestKeys == 0) {
    list->names.reset();
  }
}

void ChildLists::drop(std::int64_t parent) {
  if (find(parent) == nullptr) return;
  keys_ -= lists_.front().keys.size();
  lists_.pop_front();
}

void ChildLists::clear() {
  lists_.clear();
  keys_ = 0;
}

}  // namespace korvex::platform
