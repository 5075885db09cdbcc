// The keys of registry.db, through a small cache of those in use.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/embedded/child_lists.h"
#include "platform/embedded/database.h"
#include "platform/embedded/value_blob.h"
#include "platform/registry.h"

namespace korvex::platform {

enum class KeyOrder { Alphabetical, Creation };

struct StoredKey {
  std::int64_t id = 0;  // 0: an unused place
  std::int64_t parent = 0;
  std::string name;
  std::string folded;
  ValueBlob values;
  bool isNew = false;    // not in the database yet
  bool changed = false;  // its values are newer than the database's
  std::uint64_t used = 0;
};

// Changes stay in the cache until its place is needed or flush() writes them; all of them need a
// transaction that the caller has begun. A StoredKey is good until the next call. What the cache
// holds is right as long as forget() is called after every rollback and every foreign commit.
class KeyStore {
 public:
  KeyStore(Database& database, KeyOrder order) : database_(database), order_(order) {}
  Status prepare();

  // 2: no such key.
  Status find(std::int64_t parent, std::string_view name, std::int64_t& id);
  // 1018: the key is gone.
  Status load(std::int64_t id, StoredKey*& key);
  // 259: no such subkey.
  Status childAt(std::int64_t parent, std::size_t index, StoredKey*& child);
  Status countChildren(std::int64_t parent, std::size_t& count, std::size_t& longestName);
  Status hasChildren(std::int64_t parent, bool& result);

  // The key must not exist.
  Status create(std::int64_t parent, std::string_view name, std::int64_t& id);
  // The key with everything beneath it.
  Status removeTree(std::int64_t id);
  // Writes what the cache holds to the database; before each commit.
  Status flush();
  void forget();
  // Keys created from now on have this number or a higher one.
  Status nextKey(std::int64_t& id);

 private:
  static constexpr std::size_t kPlaces = 32;

  StoredKey* cached(std::int64_t id);
  Status freePlace(StoredKey*& place);
  Status evict(StoredKey& place);
  Status write(StoredKey& key);
  void occupy(StoredKey& place, std::int64_t id);
  void release(StoredKey& place);
  std::size_t placeOf(const StoredKey& key) const;
  Status children(std::int64_t parent, ChildList*& list);
  Status readStatistics(std::int64_t parent, NameStatistics& names);

  Database& database_;
  KeyOrder order_;
  Statement find_, load_, children_, names_, hasChildren_;
  Statement insert_, update_, remove_, removeTree_, readCounter_, writeCounter_;
  std::array<StoredKey, kPlaces> places_;
  std::array<std::int64_t, kPlaces> ids_ = {};  // those of places_, close together for searching
  std::array<std::size_t, kPlaces> hashes_ = {};
  ChildLists childLists_;
  ChildList noChildren_;
  std::string folded_;
  std::size_t last_ = 0;
  std::uint64_t uses_ = 0;
  std::int64_t nextKey_ = 0;  // 0: not read yet
  bool counterChanged_ = false;
};

}  // namespace korvex::platform
