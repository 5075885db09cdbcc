// Finding keys by path: roots, names that stand for another key, and a memory of long paths.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/common/machine_facts.h"
#include "platform/stored/key_store.h"
#include "platform/stored/names.h"

namespace korvex::platform {

// Where the roots of a registry lie.
struct RegistryPlaces {
  Family family = Family::Nt;
  std::string userKey;      // HKEY_CURRENT_USER: a subkey of HKEY_USERS
  std::string userClasses;  // a subkey of HKEY_USERS that lies over HKLM\Software\Classes; "": none
  std::string configKey;    // HKEY_CURRENT_CONFIG: a path under HKEY_LOCAL_MACHINE
};

struct FoundKey {
  std::int64_t key = 0;
  std::int64_t under = 0;  // the key that it lies over
  bool fixed = false;      // the path ends in a root or in a name that stands for another key
};

// HKEY_CLASSES_ROOT is HKLM\Software\Classes, with the user's classes over it where there are any:
// a key that both have is opened as a pair, a new one is made in the machine's classes unless its
// parent is the user's alone. On NT "CurrentControlSet" under HKLM\SYSTEM stands for the set that
// Select\Current tells, where there is such a value; where that set is a key of its own, as Wine
// has it, ControlSet001 stands for it. A symbolic link stands for its target. Neither
// of the two is enumerated.
class KeyPaths {
 public:
  // rules and places are the caller's.
  KeyPaths(KeyStore& store, const TextRules& rules, const RegistryPlaces& places)
      : store_(store), rules_(rules), places_(places) {}

  // 161, 206, 87 or 1113 for a path that no key can have.
  Status check(std::string_view path) const;
  // The path must have passed check(); an empty one is the start itself. 2: no such key.
  Status find(const FoundKey& start, std::string_view path, FoundKey& found);
  // Makes the missing keys too, which needs a transaction; 5 where that is not allowed. created
  // tells of the last one.
  Status create(const FoundKey& start, std::string_view path, bool allowed, FoundKey& found,
                bool& created);
  // root is one of the predefined roots. 2 where what it stands for is missing.
  Status findRoot(HKEY root, FoundKey& key);
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
  Status findClasses(FoundKey& classes);
  Status step(const FoundKey& parent, std::string_view name, FoundKey& found);
  Status stepInOne(std::int64_t parent, std::string_view name, FoundKey& found);
  Status followLink(FoundKey& found);
  Status onlyControlSet(std::int64_t parent, FoundKey& found);
  Status currentControlSet(std::int64_t parent, std::string& name);

  KeyStore& store_;
  const TextRules& rules_;
  const RegistryPlaces& places_;
  std::unordered_map<std::string, FoundKey> memory_;
  std::array<FoundKey, 6> roots_ = {};
  int links_ = 0;  // that are being followed
  std::string memoryKey_;
};

}  // namespace korvex::platform
