// The keys of registry.db and the cache of those in use.
#include "platform/embedded/database_keys.h"

#include <algorithm>
#include <functional>

#include "platform/stored/names.h"

namespace korvex::platform {
namespace {

// Decoded keys together take no more than this, but for a single key that is larger.
constexpr std::size_t kCacheBytes = 2 << 20;

std::size_t hashOf(std::int64_t parent, const std::string& folded) {
  return std::hash<std::string>{}(folded) ^
         (static_cast<std::size_t>(parent) * 0x9E3779B97F4A7C15U);
}

}  // namespace

Status DatabaseKeys::prepare() {
  const std::pair<Statement&, const char*> statements[] = {
      {find_, "SELECT id FROM keys WHERE parent = ? AND folded = ?"},
      {load_, "SELECT parent, name, folded, data FROM keys WHERE id = ?"},
      {children_, order_ == KeyOrder::Alphabetical
                      ? "SELECT id FROM keys WHERE parent = ? ORDER BY folded"
                      : "SELECT id FROM keys WHERE parent = ?"},
      {names_, "SELECT name FROM keys WHERE parent = ?"},
      {hasChildren_, "SELECT 1 FROM keys WHERE parent = ? LIMIT 1"},
      {insert_, "INSERT INTO keys(id, parent, folded, name, data) VALUES(?, ?, ?, ?, ?)"},
      {update_, "UPDATE keys SET data = ? WHERE id = ?"},
      {remove_, "DELETE FROM keys WHERE id = ?"},
      {removeTree_,
       "WITH RECURSIVE tree(id) AS (SELECT ? UNION ALL "
       "SELECT keys.id FROM keys JOIN tree ON keys.parent = tree.id) "
       "DELETE FROM keys WHERE id IN tree"},
      {readCounter_, "SELECT value FROM counters WHERE name = 'nextKey'"},
      {writeCounter_, "UPDATE counters SET value = ? WHERE name = 'nextKey'"},
  };
  for (const auto& [statement, sql] : statements) {
    const Status status = database_.prepare(statement, sql);
    if (status != ERROR_SUCCESS) return status;
  }
  return ERROR_SUCCESS;
}

std::size_t DatabaseKeys::placeOf(const CachedKey& key) const {
  return static_cast<std::size_t>(&key - places_.data());
}

CachedKey* DatabaseKeys::cached(std::int64_t id) {
  if (ids_[last_] != id) {
    const auto found = std::find(ids_.begin(), ids_.end(), id);
    if (found == ids_.end()) return nullptr;
    last_ = static_cast<std::size_t>(found - ids_.begin());
  }
  places_[last_].used = ++uses_;
  return &places_[last_];
}

void DatabaseKeys::release(CachedKey& place) {
  ids_[placeOf(place)] = 0;
  place.id = 0;
  place.isNew = place.changed = false;
  place.used = 0;
  place.values.clear();
}

void DatabaseKeys::occupy(CachedKey& place, std::int64_t id) {
  place.id = id;
  place.used = ++uses_;
  last_ = placeOf(place);
  ids_[last_] = id;
  hashes_[last_] = hashOf(place.parent, place.folded);
}

Status DatabaseKeys::write(CachedKey& key) {
  if (!key.isNew && !key.changed) return ERROR_SUCCESS;
  Statement& statement = key.isNew ? insert_ : update_;
  const StatementRun run(statement);
  if (key.isNew) {
    statement.bind(1, key.id).bind(2, key.parent).bind(3, key.folded).bind(4, key.name);
    statement.bindBlob(5, key.values.packed());
  } else {
    statement.bindBlob(1, key.values.packed()).bind(2, key.id);
  }
  const Status status = database_.report(statement.step());
  if (status == ERROR_SUCCESS) key.isNew = key.changed = false;
  return status;
}

Status DatabaseKeys::evict(CachedKey& place) {
  const Status status = write(place);
  if (status == ERROR_SUCCESS) release(place);
  return status;
}

// Evicts the key that was not used for longest, and more while the cache is too large.
Status DatabaseKeys::freePlace(CachedKey*& place) {
  std::size_t total = 0;
  for (const CachedKey& key : places_) {
    if (key.id != 0) total += key.values.memoryBytes();
  }
  do {
    place = &*std::min_element(places_.begin(), places_.end(),
                               [](const auto& a, const auto& b) { return a.used < b.used; });
    if (place->id == 0 && total <= kCacheBytes) return ERROR_SUCCESS;
    if (place->id == 0) {
      place = &*std::max_element(places_.begin(), places_.end(), [](const auto& a, const auto& b) {
        return a.values.memoryBytes() < b.values.memoryBytes();
      });
    }
    total -= place->values.memoryBytes();
    const Status status = evict(*place);
    if (status != ERROR_SUCCESS) return status;
  } while (total > kCacheBytes);
  return ERROR_SUCCESS;
}

Status DatabaseKeys::find(std::int64_t parent, std::string_view name, std::int64_t& id) {
  foldInto(name, folded_);
  const std::size_t hash = hashOf(parent, folded_);
  for (std::size_t i = 0; i < kPlaces; ++i) {
    if (hashes_[i] != hash || ids_[i] == 0) continue;
    if (places_[i].parent == parent && places_[i].folded == folded_) {
      id = ids_[i];
      return ERROR_SUCCESS;
    }
  }
  const StatementRun run(find_);
  const int result = find_.bind(1, parent).bind(2, folded_).step();
  if (result == SQLITE_DONE) return ERROR_FILE_NOT_FOUND;
  if (result != SQLITE_ROW) return database_.report(result);
  id = find_.number(0);
  return ERROR_SUCCESS;
}

Status DatabaseKeys::load(std::int64_t id, StoredKey*& result) {
  CachedKey* key = cached(id);
  result = key;
  if (key != nullptr) return ERROR_SUCCESS;
  const Status status = freePlace(key);
  if (status != ERROR_SUCCESS) return status;
  const StatementRun run(load_);
  const int row = load_.bind(1, id).step();
  if (row == SQLITE_DONE) return ERROR_KEY_DELETED;
  if (row != SQLITE_ROW) return database_.report(row);
  key->parent = load_.number(0);
  key->name = load_.bytes(1);
  key->folded = load_.bytes(2);
  if (!key->values.load(load_.bytes(3))) return database_.report(SQLITE_CORRUPT);
  occupy(*key, id);
  result = key;
  return ERROR_SUCCESS;
}

Status DatabaseKeys::children(std::int64_t parent, ChildList*& list) {
  list = childLists_.find(parent);
  if (list != nullptr) return ERROR_SUCCESS;
  for (CachedKey& place : places_) {
    const Status status = place.isNew ? write(place) : ERROR_SUCCESS;
    if (status != ERROR_SUCCESS) return status;
  }
  std::deque<std::int64_t> keys;
  const StatementRun run(children_);
  int result = children_.bind(1, parent).step();
  // Most keys have no subkeys: their empty lists would only drive others out.
  if (result == SQLITE_DONE) {
    noChildren_.names = NameStatistics{};
    list = &noChildren_;
    return ERROR_SUCCESS;
  }
  for (; result == SQLITE_ROW; result = children_.step()) keys.push_back(children_.number(0));
  if (result != SQLITE_DONE) return database_.report(result);
  if (order_ == KeyOrder::Creation) std::sort(keys.begin(), keys.end());
  list = &childLists_.add(parent, std::move(keys));
  return ERROR_SUCCESS;
}

Status DatabaseKeys::childAt(std::int64_t parent, std::size_t index, StoredKey*& child) {
  ChildList* list = nullptr;
  Status status = children(parent, list);
  if (status != ERROR_SUCCESS) return status;
  if (index >= list->keys.size()) return ERROR_NO_MORE_ITEMS;
  list->lastIndex = index;
  status = load(list->keys[index], child);
  if (status != ERROR_KEY_DELETED) return status;
  // Another process has deleted it since the list was read.
  childLists_.drop(parent);
  status = children(parent, list);
  if (status != ERROR_SUCCESS) return status;
  return index < list->keys.size() ? load(list->keys[index], child) : ERROR_NO_MORE_ITEMS;
}

Status DatabaseKeys::readStatistics(std::int64_t parent, NameStatistics& names) {
  const StatementRun run(names_);
  int result = names_.bind(1, parent).step();
  for (; result == SQLITE_ROW; result = names_.step()) {
    const std::size_t bytes = names_.bytes(0).size();
    if (bytes > names.longest) names = {bytes, 0};
    if (bytes == names.longest) ++names.longestKeys;
  }
  return result == SQLITE_DONE ? ERROR_SUCCESS : database_.report(result);
}

Status DatabaseKeys::countChildren(std::int64_t parent, std::size_t& count,
                                   std::size_t& longestName) {
  ChildList* list = nullptr;
  Status status = children(parent, list);
  if (status != ERROR_SUCCESS) return status;
  if (!list->names) {
    NameStatistics names;
    status = readStatistics(parent, names);
    if (status != ERROR_SUCCESS) return status;
    list->names = names;
  }
  count = list->keys.size();
  longestName = list->names->longest;
  return ERROR_SUCCESS;
}

Status DatabaseKeys::hasChildren(std::int64_t parent, bool& result) {
  if (const ChildList* list = childLists_.find(parent)) {
    result = !list->keys.empty();
    return ERROR_SUCCESS;
  }
  result = std::any_of(places_.begin(), places_.end(),
                       [&](const CachedKey& key) { return key.id != 0 && key.parent == parent; });
  if (result) return ERROR_SUCCESS;
  const StatementRun run(hasChildren_);
  const int found = hasChildren_.bind(1, parent).step();
  result = found == SQLITE_ROW;
  return result || found == SQLITE_DONE ? ERROR_SUCCESS : database_.report(found);
}

Status DatabaseKeys::nextKey(std::int64_t& id) {
  if (nextKey_ == 0) {
    const StatementRun run(readCounter_);
    const int result = readCounter_.step();
    if (result != SQLITE_ROW)
      return database_.report(result == SQLITE_DONE ? SQLITE_CORRUPT : result);
    nextKey_ = readCounter_.number(0);
  }
  id = nextKey_;
  return ERROR_SUCCESS;
}

Status DatabaseKeys::create(std::int64_t parent, std::string_view name, std::int64_t& id) {
  Status status = nextKey(id);
  if (status != ERROR_SUCCESS) return status;
  CachedKey* key = nullptr;
  status = freePlace(key);
  if (status != ERROR_SUCCESS) return status;
  ++nextKey_;
  counterChanged_ = true;
  key->parent = parent;
  key->name = name;
  foldInto(name, key->folded);
  key->isNew = true;
  // In creation order a new key goes to the end, but the next enumeration may as well read it.
  childLists_.drop(parent);
  occupy(*key, id);
  return ERROR_SUCCESS;
}

Status DatabaseKeys::removeTree(std::int64_t id) {
  StoredKey* key = nullptr;
  bool hasSubKeys = false;
  Status status = load(id, key);
  if (status == ERROR_SUCCESS) status = hasChildren(id, hasSubKeys);
  if (status != ERROR_SUCCESS) return status;
  const std::int64_t parent = key->parent;
  const std::size_t nameBytes = key->name.size();
  if (hasSubKeys) {
    status = writeCache();
    if (status != ERROR_SUCCESS) return status;
    for (CachedKey& place : places_) release(place);
    childLists_.clear();
  } else {
    auto& place = static_cast<CachedKey&>(*key);
    const bool onlyHere = place.isNew;
    release(place);
    childLists_.removeChild(parent, id, nameBytes);
    if (onlyHere) return ERROR_SUCCESS;
  }
  Statement& statement = hasSubKeys ? removeTree_ : remove_;
  const StatementRun run(statement);
  return database_.report(statement.bind(1, id).step());
}

Status DatabaseKeys::writeCache() {
  for (CachedKey& place : places_) {
    const Status status = place.id != 0 ? write(place) : ERROR_SUCCESS;
    if (status != ERROR_SUCCESS) return status;
  }
  if (!counterChanged_) return ERROR_SUCCESS;
  const StatementRun run(writeCounter_);
  const Status status = database_.report(writeCounter_.bind(1, nextKey_).step());
  if (status == ERROR_SUCCESS) counterChanged_ = false;
  return status;
}

Status DatabaseKeys::aboutToChange(StoredKey& key) {
  static_cast<CachedKey&>(key).changed = true;
  return ERROR_SUCCESS;
}

Status DatabaseKeys::commit() {
  const Status status = writeCache();
  return status == ERROR_SUCCESS ? database_.commit() : status;
}

void DatabaseKeys::rollback() {
  database_.rollback();
  forget();
}

bool DatabaseKeys::changedByOthers() {
  if (!database_.changedByOthers()) return false;
  forget();
  return true;
}

void DatabaseKeys::forget() {
  for (CachedKey& place : places_) release(place);
  childLists_.clear();
  nextKey_ = 0;
  counterChanged_ = false;
}

}  // namespace korvex::platform
