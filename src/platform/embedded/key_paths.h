// Finding keys by path: roots, names that stand for another key, and a memory of long paths.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/embedded/key_store.h"
#include "platform/embedded/names.h"

namespace korvex::platform {

enum class Family { Nt, NineX };

struct FoundKey {
  std::int64_t key = 0;
  bool fixed = false;  // the path ends in a root or in a name that stands for another key
};

// HKEY_CLASSES_ROOT is HKLM\Software\Classes and HKEY_CURRENT_USER the user's key under
// HKEY_USERS. On NT "CurrentControlSet" under HKLM\SYSTEM stands for the set that Select\Current
// tells, where there is such a value; it is not enumerated.
class KeyPaths {
 public:
  KeyPaths(KeyStore& store, const TextRules& rules, Family family, std::string userKey)
      : store_(store), rules_(rules), family_(family), userKey_(std::move(userKey)) {}

  // 161, 206, 87 or 1113 for a path that no key can have.
  Status check(std::string_view path) const;
  // The path must have passed check(); an empty one is the start itself. 2: no such key.
  Status find(std::int64_t start, std::string_view path, FoundKey& found);
  // Makes the missing keys too, which needs a transaction; 5 where that is not allowed. created
  // tells of the last one.
  Status create(std::int64_t start, std::string_view path, bool allowed, FoundKey& found,
                bool& created);
  // root is one of the predefined roots. 2 where what it stands for is missing.
  Status findRoot(HKEY root, std::int64_t& key);
  Status createRoot(HKEY root, std::int64_t& key);
  // True for the user's own key, which is in use as long as the machine is.
  Status isUserKey(std::int64_t key, bool& result);
  void forget();

 private:
  struct Root {
    std::int64_t base = 0;
    std::string_view path;
  };
  Root rootOf(HKEY root) const;
  Status step(std::int64_t parent, std::string_view name, FoundKey& found);
  Status currentControlSet(std::int64_t parent, std::string& name);

  KeyStore& store_;
  const TextRules& rules_;
  Family family_;
  std::string userKey_;
  std::unordered_map<std::string, FoundKey> memory_;
  std::array<std::int64_t, 6> roots_ = {};
  std::string memoryKey_;
};

}  // namespace korvex::platform
