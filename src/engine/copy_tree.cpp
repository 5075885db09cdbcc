// Values, then subkeys.
#include "engine/copy_tree.h"

#include <vector>

#include "engine/raw_value.h"

namespace korvex::engine {

using foundation::Session;
using platform::ERROR_SUCCESS;
using platform::Status;

namespace {

Status copyValues(platform::Registry& registry, platform::HKEY from, platform::HKEY to) {
  char name[platform::kNameBufferBytes];
  Status status = ERROR_SUCCESS;
  for (std::uint32_t i = 0; status == ERROR_SUCCESS; ++i) {
    std::uint32_t length = sizeof name;
    status = registry.RegEnumValueA(from, i, name, &length, nullptr, nullptr, nullptr);
    const std::string_view valueName(name, length);
    if (status == ERROR_SUCCESS) status = copyRawValue(registry, from, valueName, to, valueName);
  }
  return status == platform::ERROR_NO_MORE_ITEMS ? ERROR_SUCCESS : status;
}

}  // namespace

Status copyTree(Session& session, Root root, const std::string& from, Root toRoot,
                const std::string& to) {
  platform::Registry& registry = session.registry();
  std::vector<std::string> children;
  Status status = listSubKeys(registry, root, from, platform::KEY_READ, children);
  if (status != ERROR_SUCCESS) return status;
  platform::HKEY target = 0;
  bool existed = false;
  status = session.regTool.CreateRegNode(toRoot, to, target, existed, platform::KEY_ALL_ACCESS);
  if (status != ERROR_SUCCESS) return status;
  {
    const platform::OpenKey source(registry, root, from, platform::KEY_READ);
    status = source.status() == ERROR_SUCCESS ? copyValues(registry, source.get(), target)
                                              : source.status();
  }
  registry.RegCloseKey(target);
  for (const std::string& child : children) {
    if (status != ERROR_SUCCESS) return status;
    status = copyTree(session, root, from + '\\' + child, toRoot, to + '\\' + child);
  }
  return status;
}

}  // namespace korvex::engine
