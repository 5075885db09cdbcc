// Reading whole values and keys.
#include "cli/registry_access.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/context.h"

namespace korvex::cli {
namespace {

using namespace platform;

}  // namespace

Status readValue(Registry& registry, HKEY key, std::string_view name, Value& value) {
  Status status = ERROR_MORE_DATA;
  value.bytes.resize(256);
  while (status == ERROR_MORE_DATA) {
    auto size = static_cast<std::uint32_t>(value.bytes.size());
    status = registry.RegQueryValueExA(key, name, &value.type, value.bytes.data(), &size);
    value.bytes.resize(status == ERROR_SUCCESS || status == ERROR_MORE_DATA ? size : 0);
  }
  return status;
}

Status readValues(Registry& registry, HKEY key, std::vector<NamedValue>& values) {
  for (std::uint32_t index = 0;; ++index) {
    char name[kNameBufferBytes];
    std::uint32_t length = sizeof name;
    Status status = registry.RegEnumValueA(key, index, name, &length, nullptr, nullptr, nullptr);
    if (status == ERROR_NO_MORE_ITEMS) break;
    if (status != ERROR_SUCCESS) return status;
    NamedValue entry{std::string(name, length), {}};
    status = readValue(registry, key, entry.first, entry.second);
    if (status == ERROR_FILE_NOT_FOUND) continue;  // deleted in between
    if (status != ERROR_SUCCESS) return status;
    values.push_back(std::move(entry));
  }
  std::stable_partition(values.begin(), values.end(),
                        [](const NamedValue& value) { return value.first.empty(); });
  return ERROR_SUCCESS;
}

Status readSubkeys(Registry& registry, HKEY key, std::vector<std::string>& names) {
  for (std::uint32_t index = 0;; ++index) {
    char name[kNameBufferBytes];
    std::uint32_t length = sizeof name;
    const Status status = registry.RegEnumKeyExA(key, index, name, &length);
    if (status == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
    if (status != ERROR_SUCCESS) return status;
    names.emplace_back(name, length);
  }
}

Status deleteTree(Registry& registry, const TypedKey& key) {
  // Depth first with a list of its own: a deep tree must not use up the stack.
  std::vector<std::string> pending{key.path};
  while (!pending.empty()) {
    const std::string path = pending.back();
    std::vector<std::string> children;
    {
      const OpenKey opened(registry, key.root, path, KEY_READ);
      if (opened.status() != ERROR_SUCCESS) return opened.status();
      const Status status = readSubkeys(registry, opened.get(), children);
      if (status != ERROR_SUCCESS) return status;
    }
    if (children.empty()) {
      const Status status = registry.RegDeleteKeyA(key.root, path);
      if (status != ERROR_SUCCESS) return status;
      pending.pop_back();
    }
    for (const std::string& child : children) pending.push_back(fmt::format("{}\\{}", path, child));
  }
  return ERROR_SUCCESS;
}

Failure registryFailure(Status status, const std::string& what, const std::string& reason) {
  if (!reason.empty()) return machineFailure(status, what + ": " + reason);
  if (status == ERROR_FILE_NOT_FOUND) {
    return {ExitCode::Failed, "not-found", what + " is not there."};
  }
  if (status == ERROR_WRITE_PROTECT) {
    return machineFailure(status, what + ": the machine is read-only, so nothing can be changed.");
  }
  return machineFailure(status, what + ": " + describeStatus(status) + ".");
}

}  // namespace korvex::cli
