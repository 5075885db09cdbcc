// Where a registry's keys are kept: what StoredRegistry needs of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/registry.h"
#include "platform/stored/value_blob.h"

namespace korvex::platform {

// Alphabetical is NT's order, by folded names.
enum class KeyOrder { Alphabetical, Creation };

// Keys with these numbers are always there.
constexpr std::int64_t kMachineKey = 1;  // HKEY_LOCAL_MACHINE
constexpr std::int64_t kUsersKey = 2;    // HKEY_USERS

struct StoredKey {
  std::int64_t id = 0;
  std::int64_t parent = 0;
  std::string name;
  std::string folded;
  ValueBlob values;
};

// Keys by number: numbers grow and are never used twice. A StoredKey is good until the next call.
// A failure of the disk, which may come with any call inside a change, is kept as failure() until
// the change ends.
class KeyStore {
 public:
  virtual ~KeyStore() = default;

  // 2: no such key. Of links (linkTarget) only find() tells.
  virtual Status find(std::int64_t parent, std::string_view name, std::int64_t& id) = 0;
  // 1018: the key is gone.
  virtual Status load(std::int64_t id, StoredKey*& key) = 0;
  // 259: no such subkey.
  virtual Status childAt(std::int64_t parent, std::size_t index, StoredKey*& child) = 0;
  virtual Status countChildren(std::int64_t parent, std::size_t& count,
                               std::size_t& longestName) = 0;
  virtual Status hasChildren(std::int64_t parent, bool& result) = 0;
  // Where the key is a symbolic link: "\Registry\Machine\Software\Classes"; "" for other keys.
  virtual Status linkTarget(std::int64_t, std::string& target) {
    target.clear();
    return ERROR_SUCCESS;
  }

  // The rest is called inside a change only. The key must not exist.
  virtual Status create(std::int64_t parent, std::string_view name, std::int64_t& id) = 0;
  // The key with everything beneath it.
  virtual Status removeTree(std::int64_t id) = 0;
  // Whether the key can have a value like this; 0, 87 or 1450.
  virtual Status accepts(const StoredKey&, RegType, std::string_view) { return ERROR_SUCCESS; }
  // Before the values of a key are changed in place.
  virtual Status aboutToChange(StoredKey& key) = 0;
  // Keys created from now on have this number or a higher one.
  virtual Status nextKey(std::int64_t& id) = 0;

  virtual bool readOnly() const = 0;
  virtual Status begin() = 0;
  virtual Status commit() = 0;
  // Every key is again as it was at begin(), the ones created since are gone.
  virtual void rollback() = 0;
  // Returns when everything committed is on the disk.
  virtual Status flush() = 0;
  virtual std::string lastRefusal() const { return {}; }
  // True once after somebody else has changed what is stored, which is noticed outside of changes
  // and by begin(); what was remembered of paths is then void.
  virtual bool changedByOthers() = 0;
  virtual Status failure() const { return ERROR_SUCCESS; }
};

}  // namespace korvex::platform
