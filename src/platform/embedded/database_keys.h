// The keys of registry.db, through a small cache of those in use.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/embedded/child_lists.h"
#include "platform/embedded/database.h"
#include "platform/registry.h"
#include "platform/stored/key_store.h"

namespace korvex::platform {

// A key in the cache; id 0 is an unused place.
struct CachedKey : StoredKey {
  bool isNew = false;    // not in the database yet
  bool changed = false;  // its values are newer than the database's
  std::uint64_t used = 0;
};

// Changes stay in the cache until its place is needed or the change is committed.
class DatabaseKeys : public KeyStore {
 public:
  DatabaseKeys(Database& database, KeyOrder order) : database_(database), order_(order) {}
  Status prepare();

  Status find(std::int64_t parent, std::string_view name, std::int64_t& id) override;
  Status load(std::int64_t id, StoredKey*& key) override;
  Status childAt(std::int64_t parent, std::size_t index, StoredKey*& child) override;
  Status countChildren(std::int64_t parent, std::size_t& count, std::size_t& longestName) override;
  Status hasChildren(std::int64_t parent, bool& result) override;

  Status create(std::int64_t parent, std::string_view name, std::int64_t& id) override;
  Status removeTree(std::int64_t id) override;
  Status aboutToChange(StoredKey& key) override;
  Status nextKey(std::int64_t& id) override;

  bool readOnly() const override { return database_.readOnly(); }
  Status begin() override { return database_.begin(); }
  Status commit() override;
  void rollback() override;
  Status flush() override { return database_.flush(); }
  bool changedByOthers() override;
  Status failure() const override { return database_.failure(); }

 private:
  static constexpr std::size_t kPlaces = 32;

  CachedKey* cached(std::int64_t id);
  Status writeCache();
  void forget();
  Status freePlace(CachedKey*& place);
  Status evict(CachedKey& place);
  Status write(CachedKey& key);
  void occupy(CachedKey& place, std::int64_t id);
  void release(CachedKey& place);
  std::size_t placeOf(const CachedKey& key) const;
  Status children(std::int64_t parent, ChildList*& list);
  Status readStatistics(std::int64_t parent, NameStatistics& names);

  Database& database_;
  KeyOrder order_;
  Statement find_, load_, children_, names_, hasChildren_;
  Statement insert_, update_, remove_, removeTree_, readCounter_, writeCounter_;
  std::array<CachedKey, kPlaces> places_;
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
