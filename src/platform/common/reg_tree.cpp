// Deleting key trees without recursion: the depth is the registry's choice, not the stack's.
#include "platform/common/reg_tree.h"

#include <array>
#include <string>
#include <vector>

namespace korvex::platform {
namespace {

// The open keys from the tree's root to the one being emptied.
class OpenBranch {
 public:
  explicit OpenBranch(Registry& registry) : registry_(registry) {}
  ~OpenBranch() {
    while (!empty()) pop();
  }
  OpenBranch(const OpenBranch&) = delete;
  OpenBranch& operator=(const OpenBranch&) = delete;

  Status push(HKEY parent, std::string_view name) {
    HKEY key = 0;
    const Status status = registry_.RegOpenKeyExA(parent, name, KEY_READ | KEY_WRITE, key);
    if (status == ERROR_SUCCESS) levels_.push_back({parent, std::string(name), key});
    return status;
  }
  // Closes the deepest key and deletes it.
  Status popAndDelete() {
    const HKEY parent = levels_.back().parent;
    const std::string name = levels_.back().name;
    pop();
    return registry_.RegDeleteKeyA(parent, name);
  }
  HKEY deepest() const { return levels_.back().key; }
  bool empty() const { return levels_.empty(); }

 private:
  struct Level {
    HKEY parent;
    std::string name;
    HKEY key;
  };
  void pop() {
    registry_.RegCloseKey(levels_.back().key);
    levels_.pop_back();
  }

  Registry& registry_;
  std::vector<Level> levels_;
};

}  // namespace

Status deleteKeyTree(Registry& registry, HKEY root, std::string_view path) {
  // Enough on 95, 98 and Me, and for keys without subkeys; 5 is NT's word for "it has some".
  Status status = registry.RegDeleteKeyA(root, path);
  if (status != ERROR_ACCESS_DENIED) return status;
  OpenBranch branch(registry);
  status = branch.push(root, path);
  while (status == ERROR_SUCCESS && !branch.empty()) {
    std::array<char, kNameBufferBytes> buffer{};
    auto length = static_cast<std::uint32_t>(buffer.size());
    status = registry.RegEnumKeyExA(branch.deepest(), 0, buffer.data(), &length);
    if (status == ERROR_NO_MORE_ITEMS) {
      status = branch.popAndDelete();
    } else if (status == ERROR_SUCCESS) {
      const std::string_view name(buffer.data(), length);
      status = registry.RegDeleteKeyA(branch.deepest(), name);
      if (status == ERROR_ACCESS_DENIED) status = branch.push(branch.deepest(), name);
    }
  }
  return status;
}

}  // namespace korvex::platform
