// Names of the registry's roots.
#include "platform/text/reg_names.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"

namespace korvex::platform {
namespace {

struct RootName {
  HKEY root;
  std::string_view full;
  std::string_view brief;
};

constexpr auto kRoots = std::to_array<RootName>({
    {HKEY_CLASSES_ROOT, "HKEY_CLASSES_ROOT", "HKCR"},
    {HKEY_CURRENT_USER, "HKEY_CURRENT_USER", "HKCU"},
    {HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE", "HKLM"},
    {HKEY_USERS, "HKEY_USERS", "HKU"},
    {HKEY_CURRENT_CONFIG, "HKEY_CURRENT_CONFIG", "HKCC"},
    {HKEY_DYN_DATA, "HKEY_DYN_DATA", "HKDD"},
});

}  // namespace

std::optional<KeyPath> parseKeyPath(std::string_view text, ShortRoots shortRoots) {
  const std::size_t end = text.find('\\');
  const std::string_view name = text.substr(0, end);
  const auto* root = std::find_if(kRoots.begin(), kRoots.end(), [&](const RootName& r) {
    return sameName(name, r.full) || (shortRoots == ShortRoots::Yes && sameName(name, r.brief));
  });
  if (root == kRoots.end()) return std::nullopt;
  KeyPath key{root->root, end == std::string_view::npos ? "" : text.substr(end + 1)};
  if (key.path.ends_with('\\')) key.path.remove_suffix(1);
  return key;
}

std::string_view rootName(HKEY root) {
  for (const RootName& r : kRoots) {
    if (r.root == root) return r.full;
  }
  return {};
}

std::string fullKeyName(HKEY root, std::string_view path) {
  std::string name(rootName(root));
  if (!path.empty()) name.append("\\").append(path);
  return name;
}

}  // namespace korvex::platform
