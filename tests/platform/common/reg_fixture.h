// What tests of registry-editor files share: a registry as plain data, and text for one.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "platform/common/reg_export.h"
#include "platform/common/reg_import.h"
#include "platform/common/registry_decorators.h"
#include "platform/text/text.h"

namespace korvex::test {

// (full key, value name) to type and data; a key itself is there with the name "\".
using RegistryContents = std::map<std::pair<std::string, std::string>, platform::RegistryData>;

inline void collectTree(platform::Registry& registry, platform::HKEY parent,
                        const std::string& name, const std::string& path,
                        RegistryContents& contents) {
  namespace p = platform;
  const p::OpenKey key(registry, parent, name, p::KEY_READ);
  ASSERT_EQ(key.status(), p::ERROR_SUCCESS) << path;
  contents[{path, "\\"}] = {};
  for (std::uint32_t i = 0;; ++i) {
    char buffer[p::kNameBufferBytes];
    std::uint32_t length = sizeof buffer;
    std::uint32_t size = 0;
    p::RegType type = 0;
    const p::Status status =
        registry.RegEnumValueA(key.get(), i, buffer, &length, &type, nullptr, &size);
    if (status == p::ERROR_NO_MORE_ITEMS) break;
    ASSERT_EQ(status, p::ERROR_SUCCESS) << path;
    const std::string value(buffer, length);
    std::string data(size, '\0');
    ASSERT_EQ(registry.RegQueryValueExA(key.get(), value, &type, data.data(), &size), 0) << path;
    contents[{path, value}] = {type, data};
  }
  for (std::uint32_t i = 0;; ++i) {
    char buffer[p::kNameBufferBytes];
    std::uint32_t length = sizeof buffer;
    const p::Status status = registry.RegEnumKeyExA(key.get(), i, buffer, &length);
    if (status == p::ERROR_NO_MORE_ITEMS) break;
    ASSERT_EQ(status, p::ERROR_SUCCESS) << path;
    const std::string child(buffer, length);
    collectTree(registry, key.get(), child, path + "\\" + child, contents);
  }
}

inline RegistryContents contentsOf(platform::Registry& registry) {
  RegistryContents contents;
  for (const platform::KeyPath& root : platform::wholeRegistry()) {
    collectTree(registry, root.root, "", std::string(platform::rootName(root.root)), contents);
  }
  return contents;
}

// The value's data, or "(none)"; keys in full.
inline std::string dataAt(platform::Registry& registry, std::string_view fullKey,
                          std::string_view name) {
  const auto path = platform::parseKeyPath(fullKey);
  const platform::OpenKey key(registry, path->root, path->path, platform::KEY_READ);
  std::uint32_t size = 0;
  if (key.status() != 0) return "(none)";
  if (registry.RegQueryValueExA(key.get(), name, nullptr, nullptr, &size) != 0) return "(none)";
  std::string data(size, '\0');
  registry.RegQueryValueExA(key.get(), name, nullptr, data.data(), &size);
  return data;
}

inline platform::RegImportResult importText(platform::Registry& registry, const std::string& text,
                                            const platform::RegImportOptions& options = {}) {
  std::istringstream stream(text);
  return platform::importRegText(registry, stream, options);
}

// Counts the handles that are open.
class HandleCounter : public platform::ForwardingRegistry {
 public:
  using ForwardingRegistry::ForwardingRegistry;
  platform::Status RegOpenKeyExA(platform::HKEY key, std::string_view subKey,
                                 platform::AccessMask access, platform::HKEY& result) override {
    return counted(ForwardingRegistry::RegOpenKeyExA(key, subKey, access, result));
  }
  platform::Status RegCreateKeyExA(platform::HKEY key, std::string_view subKey,
                                   platform::AccessMask access, platform::HKEY& result,
                                   std::uint32_t& disposition) override {
    return counted(ForwardingRegistry::RegCreateKeyExA(key, subKey, access, result, disposition));
  }
  platform::Status RegCloseKey(platform::HKEY key) override {
    --open;
    return ForwardingRegistry::RegCloseKey(key);
  }
  int open = 0;

 private:
  platform::Status counted(platform::Status status) {
    if (status == platform::ERROR_SUCCESS) ++open;
    return status;
  }
};

}  // namespace korvex::test
