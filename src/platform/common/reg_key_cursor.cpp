// Going from key to key along the branches of the tree.
#include "platform/common/reg_key_cursor.h"

namespace korvex::platform {

void RegKeyCursor::forget() {
  for (const Level& level : levels_) registry_.RegCloseKey(level.key);
  levels_.clear();
}

bool RegKeyCursor::leadsTo(const Level& level, std::string_view path) const {
  return path.substr(0, level.length) == std::string_view(path_).substr(0, level.length) &&
         (path.size() == level.length || path[level.length] == '\\');
}

Status RegKeyCursor::go(const KeyPath& key) {
  if (key.root != root_) forget();
  root_ = key.root;
  while (!levels_.empty() && !leadsTo(levels_.back(), key.path)) {
    registry_.RegCloseKey(levels_.back().key);
    levels_.pop_back();
  }
  path_.assign(key.path);
  // The parent is opened on its own: the next key is likely to be a sibling.
  const std::size_t parent = key.path.rfind('\\');
  Status status = ERROR_SUCCESS;
  if (parent != std::string_view::npos) status = descend(parent);
  return status == ERROR_SUCCESS ? descend(key.path.size()) : status;
}

// Opens the key at the first `end` characters of path_ unless the deepest open key is it or beyond.
Status RegKeyCursor::descend(std::size_t end) {
  const std::size_t have = levels_.empty() ? 0 : levels_.back().length;
  if (have >= end) return ERROR_SUCCESS;
  const std::size_t begin = levels_.empty() ? 0 : have + 1;
  HKEY key = 0;
  std::uint32_t disposition = 0;
  const Status status = registry_.RegCreateKeyExA(
      current(), std::string_view(path_).substr(begin, end - begin), KEY_WRITE, key, disposition);
  if (status == ERROR_SUCCESS) levels_.push_back({end, key});
  return status;
}

}  // namespace korvex::platform
