// Keys of registry files: looking them up, changing them in memory, taking changes back.
#include "platform/hives/hive_store.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "platform/hives/file_set.h"
#include "platform/stored/names.h"
#include "platform/text/text.h"

namespace korvex::platform {
namespace {

bool isText(RegType type) {
  return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

}  // namespace

HiveStore::HiveStore(HiveStoreOptions options, std::shared_ptr<CountedLock> lock)
    : options_(std::move(options)), lock_(std::move(lock)) {}

HiveStore::~HiveStore() {
  if (locked_) lock_->release();
}

HiveKey* HiveStore::at(std::int64_t id) {
  if (id >= kFirstCreated) {
    const auto place = static_cast<std::size_t>(id - kFirstCreated);
    return place < created_.size() ? &created_[place] : nullptr;
  }
  const auto place = static_cast<std::size_t>(id);
  return id > 0 && place < loaded_.size() ? &loaded_[place] : nullptr;
}

HiveKey& HiveStore::addLoaded(std::int64_t parent, std::string_view name) {
  HiveKey& key = loaded_.emplace_back();
  key.id = static_cast<std::int64_t>(loaded_.size()) - 1;
  key.parent = parent;
  key.name = name;
  foldInto(name, key.folded);
  return key;
}

const std::string& HiveStore::indexKey(std::int64_t parent, std::string_view folded) {
  indexKey_.assign(reinterpret_cast<const char*>(&parent), sizeof parent);
  indexKey_.append(folded);
  return indexKey_;
}

// The number that the index has for a child; 0 where it was not there before.
std::int64_t& HiveStore::indexed(std::int64_t parent, std::string_view folded) {
  return index_[indexKey(parent, folded)];
}

// The key as the files have it now.
Status HiveStore::fresh(std::int64_t id, HiveKey*& key) {
  key = at(id);
  if (key == nullptr || key->gone) return ERROR_KEY_DELETED;
  if (!key->stale) return ERROR_SUCCESS;
  HiveKey* parent = nullptr;
  const Status status = freshWithChildren(key->parent, parent);
  if (status != ERROR_SUCCESS) return status;
  if (key->stale) key->gone = true;  // its parent has been read, and it was not there
  return key->gone ? ERROR_KEY_DELETED : ERROR_SUCCESS;
}

Status HiveStore::freshWithChildren(std::int64_t id, HiveKey*& key) {
  const Status status = fresh(id, key);
  if (status != ERROR_SUCCESS || key->hasChildren) return status;
  return readChildren(*key);
}

// Makes a child that the file tells of a key of ours; null for one that is not to be seen: it was
// removed here, or there is one of the same name in other case.
HiveKey* HiveStore::adopt(HiveKey& parent, const HiveChild& child) {
  std::string folded;
  foldInto(child.name, folded);
  std::int64_t& known = indexed(parent.id, folded);
  const auto removed = removedNames_.find(indexKey_);
  if (removed != removedNames_.end()) {
    removed_[removed->second].node = child.node;
    return nullptr;
  }
  HiveKey* key = at(known);
  if (key != nullptr && key->gone) key = nullptr;
  if (key != nullptr && key->node != kNoNode && !key->stale) return nullptr;
  if (key == nullptr) key = &addLoaded(parent.id, child.name);
  known = key->id;
  key->hive = parent.hive;
  key->node = child.node;
  key->isLink = child.isLink;
  key->stale = false;
  if (key->isLink) ++parent.links;
  return key;
}

Status HiveStore::readChildren(HiveKey& parent) {
  std::vector<HiveChild> found;
  if (parent.node != kNoNode) {
    const Status status = hives_[parent.hive].file->children(parent.node, found);
    if (status != ERROR_SUCCESS) return status;
  }
  // What stands here before its file has been read was created since.
  const std::vector<std::int64_t> own = std::exchange(parent.children, {});
  parent.links = 0;
  for (const HiveChild& child : found) {
    const HiveKey* const key = adopt(parent, child);
    if (key != nullptr && !key->isLink) parent.children.push_back(key->id);
  }
  parent.added = 0;
  for (const std::int64_t id : own) {
    HiveKey& key = *at(id);
    // It was in the file once, and is there no more.
    if (key.stale) key.gone = true;
    if (key.gone || key.node != kNoNode) continue;
    parent.children.push_back(id);
    ++parent.added;
  }
  if (options_.order == KeyOrder::Alphabetical) {
    std::sort(parent.children.begin(), parent.children.end(),
              [this](std::int64_t a, std::int64_t b) { return at(a)->folded < at(b)->folded; });
  }
  parent.hasChildren = true;
  return ERROR_SUCCESS;
}

Status HiveStore::readValues(HiveKey& key) {
  if (key.hasValues) return ERROR_SUCCESS;
  std::vector<HiveValue> values;
  if (key.node != kNoNode) {
    const Status status = hives_[key.hive].file->values(key.node, values);
    if (status != ERROR_SUCCESS) return status;
  }
  key.values.clear();
  for (const HiveValue& value : values) key.values.set(value.name, value.type, value.data);
  const auto waiting = waiting_.find(key.id);
  if (waiting != waiting_.end()) {
    for (const auto& [value, remove] : waiting->second) {
      if (!remove) {
        key.values.set(value.name, value.type, value.data);
      } else if (const std::size_t found = key.values.find(value.name); found != ValueBlob::kNone) {
        key.values.erase(found);
      }
    }
    waiting_.erase(waiting);
  }
  key.hasValues = true;
  return ERROR_SUCCESS;
}

Status HiveStore::find(std::int64_t parent, std::string_view name, std::int64_t& id) {
  HiveKey* key = nullptr;
  const Status status = freshWithChildren(parent, key);
  if (status != ERROR_SUCCESS) return status == ERROR_KEY_DELETED ? ERROR_FILE_NOT_FOUND : status;
  std::string folded;
  foldInto(name, folded);
  const auto found = index_.find(indexKey(parent, folded));
  if (found == index_.end()) return ERROR_FILE_NOT_FOUND;
  const HiveKey* const child = at(found->second);
  if (child == nullptr || child->gone || child->stale) return ERROR_FILE_NOT_FOUND;
  id = found->second;
  return ERROR_SUCCESS;
}

Status HiveStore::load(std::int64_t id, StoredKey*& key) {
  HiveKey* found = nullptr;
  Status status = fresh(id, found);
  if (status == ERROR_SUCCESS) status = readValues(*found);
  key = found;
  return status;
}

Status HiveStore::childAt(std::int64_t parent, std::size_t index, StoredKey*& child) {
  HiveKey* key = nullptr;
  const Status status = freshWithChildren(parent, key);
  if (status != ERROR_SUCCESS) return status;
  if (index >= key->children.size()) return ERROR_NO_MORE_ITEMS;
  child = at(key->children[index]);
  return ERROR_SUCCESS;
}

Status HiveStore::countChildren(std::int64_t parent, std::size_t& count, std::size_t& longestName) {
  HiveKey* key = nullptr;
  const Status status = freshWithChildren(parent, key);
  if (status != ERROR_SUCCESS) return status;
  count = key->children.size();
  longestName = 0;
  for (const std::int64_t id : key->children) {
    longestName = std::max(longestName, at(id)->name.size());
  }
  return ERROR_SUCCESS;
}

Status HiveStore::hasChildren(std::int64_t parent, bool& result) {
  HiveKey* key = nullptr;
  const Status status = freshWithChildren(parent, key);
  result = status == ERROR_SUCCESS && (!key->children.empty() || key->links > 0);
  return status;
}

Status HiveStore::linkTarget(std::int64_t id, std::string& target) {
  target.clear();
  HiveKey* key = nullptr;
  const Status status = fresh(id, key);
  if (status != ERROR_SUCCESS || !key->isLink) return status;
  return hives_[key->hive].file->linkTarget(key->node, target);
}

std::size_t HiveStore::placeFor(const HiveKey& parent, const HiveKey& child) {
  if (options_.order == KeyOrder::Creation) return parent.children.size();
  const auto place = std::lower_bound(
      parent.children.begin(), parent.children.end(), child.folded,
      [this](std::int64_t id, const std::string& folded) { return at(id)->folded < folded; });
  return static_cast<std::size_t>(place - parent.children.begin());
}

Status HiveStore::nextKey(std::int64_t& id) {
  id = kFirstCreated + static_cast<std::int64_t>(created_.size());
  return ERROR_SUCCESS;
}

Status HiveStore::create(std::int64_t parent, std::string_view name, std::int64_t& id) {
  HiveKey* above = nullptr;
  const Status status = freshWithChildren(parent, above);
  if (status != ERROR_SUCCESS) return status;
  if (above->hive == HiveKey::kNoHive) return ERROR_ACCESS_DENIED;
  const std::size_t inFile = above->children.size() + above->links - above->added;
  if (!hives_[above->hive].file->hasRoomForChildren(inFile, above->added + 1)) {
    return ERROR_NO_SYSTEM_RESOURCES;
  }
  nextKey(id);
  HiveKey& key = created_.emplace_back();
  key.id = id;
  key.parent = parent;
  key.name = name;
  foldInto(name, key.folded);
  key.hive = above->hive;
  key.hasChildren = key.hasValues = true;
  ++above->added;
  above->children.insert(
      above->children.begin() + static_cast<std::ptrdiff_t>(placeFor(*above, key)), id);
  indexed(parent, key.folded) = id;
  touched_.insert(id);
  HiveUndo& entry = undo_.emplace_back();
  entry.step = HiveUndo::Step::Create;
  entry.key = id;
  return ERROR_SUCCESS;
}

Status HiveStore::removeTree(std::int64_t id) {
  HiveKey* key = nullptr;
  const Status status = fresh(id, key);
  if (status != ERROR_SUCCESS) return status;
  if (key->isMount || key->isLink) return ERROR_ACCESS_DENIED;
  HiveKey& parent = *at(key->parent);
  HiveUndo entry;
  entry.step = HiveUndo::Step::Remove;
  entry.key = id;
  entry.wasInFile = key->node != kNoNode;
  const auto place = std::find(parent.children.begin(), parent.children.end(), id);
  entry.position = static_cast<std::size_t>(place - parent.children.begin());
  parent.children.erase(place);
  entry.gone.push_back(id);
  for (std::size_t i = 0; i < entry.gone.size(); ++i) {
    HiveKey& going = *at(entry.gone[i]);
    going.gone = true;
    if (touched_.erase(going.id) > 0) entry.touched.push_back(going.id);
    entry.gone.insert(entry.gone.end(), going.children.begin(), going.children.end());
  }
  if (entry.wasInFile) {
    removed_.push_back({parent.id, key->folded, key->node});
  } else {
    --parent.added;
  }
  undo_.push_back(std::move(entry));
  return ERROR_SUCCESS;
}

Status HiveStore::accepts(const StoredKey& key, RegType type, std::string_view data) {
  const HiveKey& own = static_cast<const HiveKey&>(key);
  if (own.hive == HiveKey::kNoHive) return ERROR_ACCESS_DENIED;
  const std::size_t largest = hives_[own.hive].file->largestValue();
  if (data.size() <= largest / 2) return ERROR_SUCCESS;
  const std::size_t bytes = isText(type) ? utf8ToUtf16le(data).size() : data.size();
  return bytes <= largest ? ERROR_SUCCESS : ERROR_NO_SYSTEM_RESOURCES;
}

Status HiveStore::aboutToChange(StoredKey& key) {
  HiveKey& own = static_cast<HiveKey&>(key);
  if (own.hive == HiveKey::kNoHive || own.isLink) return ERROR_ACCESS_DENIED;
  if (own.savedIn == change_) return ERROR_SUCCESS;
  own.savedIn = change_;
  HiveUndo& entry = undo_.emplace_back();
  entry.step = HiveUndo::Step::Values;
  entry.key = own.id;
  entry.values = own.values.packed();
  entry.wasTouched = touched_.contains(own.id);
  touched_.insert(own.id);
  return ERROR_SUCCESS;
}

Status HiveStore::takeLock() {
  if (locked_) return ERROR_SUCCESS;
  const Status taken = lock_->acquire(Wait::Yes);
  locked_ = taken == ERROR_SUCCESS;
  if (taken != ERROR_BUSY) return taken;
  const std::string holder = lock_->holder();
  failureText_ = fmt::format("Korvex is open on this machine ({}){}. Close it and try again.",
                             options_.folder.string(), holder.empty() ? "" : ", by " + holder);
  return taken;
}

// What a kill has cut off is finished first; what there is to say of it was said when the machine
// was opened.
Status HiveStore::settleFiles() {
  std::string told;
  Status status = FileSet::finishInterrupted(options_.folder, told);
  if (status != ERROR_SUCCESS) failureText_ = told;
  if (status == ERROR_SUCCESS && filesMoved()) status = reload();
  return status;
}

Status HiveStore::begin() {
  failureText_.clear();
  Status status = takeLock();
  if (status == ERROR_SUCCESS && options_.mayChange) status = options_.mayChange(failureText_);
  if (status == ERROR_SUCCESS) status = settleFiles();
  if (status != ERROR_SUCCESS) {
    settleLock();
    return status;
  }
  inChange_ = true;
  ++change_;
  return ERROR_SUCCESS;
}

Status HiveStore::commit() {
  undo_.clear();
  inChange_ = false;
  settleLock();
  return ERROR_SUCCESS;
}

void HiveStore::rollback() {
  for (; !undo_.empty(); undo_.pop_back()) undo(undo_.back());
  inChange_ = false;
  settleLock();
}

void HiveStore::undoCreate(HiveKey& key) {
  HiveKey& parent = *at(key.parent);
  key.gone = true;
  --parent.added;
  std::erase(parent.children, key.id);
  index_.erase(indexKey(key.parent, key.folded));
  touched_.erase(key.id);
}

void HiveStore::undoRemove(HiveKey& key, const HiveUndo& entry) {
  HiveKey& parent = *at(key.parent);
  for (const std::int64_t id : entry.gone) at(id)->gone = false;
  touched_.insert(entry.touched.begin(), entry.touched.end());
  parent.children.insert(parent.children.begin() + static_cast<std::ptrdiff_t>(entry.position),
                         key.id);
  indexed(key.parent, key.folded) = key.id;
  if (entry.wasInFile) {
    removed_.pop_back();
  } else {
    ++parent.added;
  }
}

void HiveStore::undo(HiveUndo& entry) {
  HiveKey& key = *at(entry.key);
  switch (entry.step) {
    case HiveUndo::Step::Values:
      key.values.load(entry.values);
      if (!entry.wasTouched) touched_.erase(key.id);
      break;
    case HiveUndo::Step::Create:
      undoCreate(key);
      break;
    case HiveUndo::Step::Remove:
      undoRemove(key, entry);
      break;
  }
}

// The lock is held while there is something that only this object knows.
void HiveStore::settleLock() {
  if (!locked_ || inChange_ || hasUnsaved()) return;
  lock_->release();
  locked_ = false;
}

bool HiveStore::changedByOthers() {
  // A machine opened for reading is seen as it was then.
  if (!options_.readOnly && !inChange_ && filesMoved()) reload();
  return std::exchange(reloaded_, false);
}

}  // namespace korvex::platform
