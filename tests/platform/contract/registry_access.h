// Short ways to write and to look at a registry in tests.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/registry.h"

namespace korvex::test {

namespace p = korvex::platform;

using Names = std::vector<std::string>;

class RegistryAccess {
 public:
  explicit RegistryAccess(p::Registry& registry) : registry_(registry) {}

  // Each returns the call's status where it can fail.
  p::Status create(p::HKEY root, std::string_view path) {
    p::HKEY key = 0;
    std::uint32_t disposition = 0;
    const p::Status status =
        registry_.RegCreateKeyExA(root, path, p::KEY_ALL_ACCESS, key, disposition);
    if (status == 0) registry_.RegCloseKey(key);
    return status;
  }
  p::Status set(p::HKEY root, std::string_view path, std::string_view name, std::string_view bytes,
                p::RegType type = p::REG_BINARY) {
    p::HKEY key = 0;
    std::uint32_t disposition = 0;
    p::Status status = registry_.RegCreateKeyExA(root, path, p::KEY_ALL_ACCESS, key, disposition);
    if (status != 0) return status;
    status = registry_.RegSetValueExA(key, name, type, bytes.data(),
                                      static_cast<std::uint32_t>(bytes.size()));
    registry_.RegCloseKey(key);
    return status;
  }
  p::Status open(p::HKEY root, std::string_view path) {
    return p::OpenKey(registry_, root, path, p::KEY_READ).status();
  }
  // "status 2" where it cannot be read.
  std::string get(p::HKEY root, std::string_view path, std::string_view name) {
    const p::OpenKey key(registry_, root, path, p::KEY_QUERY_VALUE);
    if (key.status() != 0) return "status " + std::to_string(key.status());
    std::uint32_t size = 0;
    p::Status status = registry_.RegQueryValueExA(key.get(), name, nullptr, nullptr, &size);
    std::string bytes(size, '\0');
    if (status == 0) {
      status = registry_.RegQueryValueExA(key.get(), name, nullptr, bytes.data(), &size);
    }
    return status == 0 ? bytes : "status " + std::to_string(status);
  }

  Names subKeys(p::HKEY key) {
    Names names;
    char name[p::kNameBufferBytes];
    for (std::uint32_t i = 0;; ++i) {
      std::uint32_t length = sizeof name;
      if (registry_.RegEnumKeyExA(key, i, name, &length) != 0) return names;
      names.emplace_back(name, length);
    }
  }
  Names subKeys(p::HKEY root, std::string_view path) {
    const p::OpenKey key(registry_, root, path, p::KEY_READ);
    return key.status() == 0 ? subKeys(key.get()) : Names{"no key"};
  }
  Names valueNames(p::HKEY root, std::string_view path) {
    Names names;
    const p::OpenKey key(registry_, root, path, p::KEY_READ);
    char name[p::kNameBufferBytes];
    for (std::uint32_t i = 0;; ++i) {
      std::uint32_t length = sizeof name;
      if (registry_.RegEnumValueA(key.get(), i, name, &length, nullptr, nullptr, nullptr) != 0) {
        return names;
      }
      names.emplace_back(name, length);
    }
  }
  // Everything at and beneath a key, for comparing two states.
  std::string dump(p::HKEY root, const std::string& path) {
    std::string text = "[" + path + "]\n";
    for (const auto& name : valueNames(root, path)) {
      text.append(name).append("=").append(get(root, path, name)).append("\n");
    }
    for (const auto& name : subKeys(root, path)) {
      std::string child = path;
      child.append("\\").append(name);
      text += dump(root, child);
    }
    return text;
  }

 private:
  p::Registry& registry_;
};

}  // namespace korvex::test
