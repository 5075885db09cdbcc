// Looking up single keys and values of a hive.
#include "platform/windows_folder/hive_lookup.h"

#include <vector>

#include "platform/text/text.h"

namespace korvex::platform {

HiveNode hiveChild(HiveFile& hive, HiveNode key, std::string_view name) {
  std::vector<HiveChild> children;
  if (key == kNoNode || hive.children(key, children) != ERROR_SUCCESS) return kNoNode;
  for (const HiveChild& child : children) {
    if (sameName(child.name, name)) return child.node;
  }
  return kNoNode;
}

HiveNode hiveKey(HiveFile& hive, std::initializer_list<std::string_view> path) {
  HiveNode key = hive.root();
  for (const std::string_view name : path) key = hiveChild(hive, key, name);
  return key;
}

std::string hiveText(HiveFile& hive, HiveNode key, std::string_view value) {
  std::vector<HiveValue> values;
  if (key == kNoNode || hive.values(key, values) != ERROR_SUCCESS) return {};
  for (const HiveValue& candidate : values) {
    const bool text = candidate.type == REG_SZ || candidate.type == REG_EXPAND_SZ;
    if (text && sameName(candidate.name, value)) {
      return candidate.data.substr(0, candidate.data.find('\0'));
    }
  }
  return {};
}

}  // namespace korvex::platform
