// A session on a fresh machine, and short ways to put registry values there and to look at them.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/session.h"
#include "support/machines.h"
#include "support/scripted_prompts.h"

namespace korvex::test {

// What stands in the registry, as the registry tells it.
struct Stored {
  platform::RegType type = platform::REG_NONE;
  std::string bytes;
  bool operator==(const Stored&) const = default;
};

inline void PrintTo(const Stored& stored, std::ostream* out) {
  *out << "type " << stored.type << ' ' << ::testing::PrintToString(stored.bytes);
}

inline std::string zeroEnded(std::string_view text) { return std::string(text) + '\0'; }
inline Stored text(std::string_view text) { return {platform::REG_SZ, zeroEnded(text)}; }

// An open key with everything allowed; made where it is missing.
class Key {
 public:
  Key(platform::Registry& registry, platform::HKEY root, std::string_view path)
      : registry_(registry) {
    std::uint32_t disposition = 0;
    EXPECT_EQ(registry.RegCreateKeyExA(root, path, platform::KEY_ALL_ACCESS, key_, disposition), 0)
        << path;
  }
  ~Key() { registry_.RegCloseKey(key_); }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;

  platform::HKEY get() const { return key_; }
  void put(std::string_view name, platform::RegType type, std::string_view bytes) {
    EXPECT_EQ(registry_.RegSetValueExA(key_, name, type, bytes.data(),
                                       static_cast<std::uint32_t>(bytes.size())),
              0)
        << name;
  }
  void put(std::string_view name, std::string_view value) {
    put(name, platform::REG_SZ, zeroEnded(value));
  }
  std::optional<Stored> value(std::string_view name) {
    Stored stored;
    std::uint32_t size = 0;
    if (registry_.RegQueryValueExA(key_, name, &stored.type, nullptr, &size) != 0) return {};
    stored.bytes.resize(size);
    if (registry_.RegQueryValueExA(key_, name, &stored.type, stored.bytes.data(), &size) != 0) {
      return {};
    }
    return stored;
  }

 private:
  platform::Registry& registry_;
  platform::HKEY key_ = 0;
};

struct TestRun {
  explicit TestRun(Family family) : machine(family) {}

  Key key(platform::HKEY root, std::string_view path) { return {machine.registry(), root, path}; }
  bool hasKey(platform::HKEY root, std::string_view path) {
    return platform::OpenKey(machine.registry(), root, path, platform::KEY_QUERY_VALUE).status() ==
           0;
  }

  TestMachine machine;
  ScriptedPrompts prompts;
  foundation::Session session{machine.get(), prompts};
};

}  // namespace korvex::test
