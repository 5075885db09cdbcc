// A registry as tests write it down: paths with their root, data as text.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "platform/registry.h"

namespace korvex::test {

class RegistryView {
 public:
  explicit RegistryView(platform::Registry& registry) : registry_(registry) {}

  bool hasKey(const std::string& path) const { return open(path).status() == 0; }
  // "dword 1", "\"text\"", "expand \"text\"", "binary 00 01", "type 7: 00"; "delete" for none.
  std::string value(const std::string& path, const std::string& name) const {
    const platform::OpenKey key = open(path);
    return key.status() == 0 ? value(key.get(), name) : "delete";
  }
  // Of one key, by their names.
  std::map<std::string, std::string> values(const std::string& path) const {
    std::map<std::string, std::string> result;
    const platform::OpenKey key = open(path);
    if (key.status() != 0) return result;
    std::array<char, platform::kNameBufferBytes> name;
    for (std::uint32_t i = 0;; ++i) {
      auto length = static_cast<std::uint32_t>(name.size());
      if (registry_.RegEnumValueA(key.get(), i, name.data(), &length, nullptr, nullptr, nullptr) !=
          0) {
        return result;
      }
      const std::string valueName(name.data(), length);
      result[valueName] = value(key.get(), valueName);
    }
  }
  // Everything below a key: each key ("HKCU\Software") and each value ("HKCU\Software | Name").
  void dump(const std::string& path, std::map<std::string, std::string>& result) const {
    result[path] = "key";
    for (const auto& [name, data] : values(path)) result[path + " | " + name] = data;
    const platform::OpenKey key = open(path);
    std::array<char, platform::kNameBufferBytes> name;
    for (std::uint32_t i = 0;; ++i) {
      auto length = static_cast<std::uint32_t>(name.size());
      if (registry_.RegEnumKeyExA(key.get(), i, name.data(), &length) != 0) return;
      dump(path + '\\' + std::string(name.data(), length), result);
    }
  }
  // data is "dword 1", "\"text\"" or "binary 00 01".
  void put(const std::string& path, const std::string& name, const std::string& data) const {
    const auto [root, below] = split(path);
    platform::HKEY key = 0;
    std::uint32_t disposition = 0;
    ASSERT_EQ(0,
              registry_.RegCreateKeyExA(root, below, platform::KEY_ALL_ACCESS, key, disposition));
    platform::RegType type = platform::REG_SZ;
    std::string bytes = data.substr(1, data.size() - 2) + '\0';
    if (data.starts_with("dword ")) {
      type = platform::REG_DWORD;
      const auto number = static_cast<std::uint32_t>(std::stoll(data.substr(6)));
      bytes.clear();
      for (int i = 0; i < 4; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFF);
    } else if (data.starts_with("binary")) {
      type = platform::REG_BINARY;
      bytes.clear();
      for (std::size_t at = 7; at < data.size(); at += 3) {
        bytes += static_cast<char>(std::stoi(data.substr(at, 2), nullptr, 16));
      }
    }
    EXPECT_EQ(0, registry_.RegSetValueExA(key, name, type, bytes.data(),
                                          static_cast<std::uint32_t>(bytes.size())));
    registry_.RegCloseKey(key);
  }

 private:
  static std::pair<platform::HKEY, std::string> split(const std::string& path) {
    static const std::map<std::string, platform::HKEY> kRoots{
        {"HKCR", platform::HKEY_CLASSES_ROOT},
        {"HKCU", platform::HKEY_CURRENT_USER},
        {"HKLM", platform::HKEY_LOCAL_MACHINE}};
    return {kRoots.at(path.substr(0, 4)), path.size() > 5 ? path.substr(5) : ""};
  }
  platform::OpenKey open(const std::string& path) const {
    const auto [root, below] = split(path);
    return {registry_, root, below, platform::KEY_READ};
  }
  std::string value(platform::HKEY key, const std::string& name) const {
    platform::RegType type = 0;
    std::uint32_t size = 0;
    if (registry_.RegQueryValueExA(key, name, &type, nullptr, &size) != 0) return "delete";
    std::string bytes(size, '\0');
    if (registry_.RegQueryValueExA(key, name, &type, bytes.data(), &size) != 0) return "unreadable";
    if (type == platform::REG_DWORD && size == 4) {
      std::uint32_t number = 0;
      for (int i = 3; i >= 0; --i) number = number << 8 | static_cast<std::uint8_t>(bytes[i]);
      return "dword " + std::to_string(static_cast<std::int32_t>(number));
    }
    const bool isText = bytes.find('\0') == bytes.size() - 1;
    if (type == platform::REG_SZ && isText) return '"' + bytes.substr(0, size - 1) + '"';
    if (type == platform::REG_EXPAND_SZ && isText) {
      return "expand \"" + bytes.substr(0, size - 1) + '"';
    }
    std::string shown =
        type == platform::REG_BINARY ? "binary" : "type " + std::to_string(type) + ':';
    constexpr std::string_view kDigits = "0123456789abcdef";
    for (const char c : bytes) {
      const auto byte = static_cast<std::uint8_t>(c);
      shown += {' ', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return shown;
  }

  platform::Registry& registry_;
};

}  // namespace korvex::test
