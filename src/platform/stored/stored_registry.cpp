// The registry calls over a store of keys.
#include "platform/stored/stored_registry.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace korvex::platform {
namespace {

constexpr AccessMask kDelete = 0x10000;
constexpr AccessMask kAnyWrite = KEY_SET_VALUE | KEY_CREATE_SUB_KEY | kDelete;
constexpr AccessMask kGenericRead = 0x80000000;
constexpr AccessMask kGenericWrite = 0x40000000;
constexpr AccessMask kGenericAll = 0x10000000;
constexpr AccessMask kMaximumAllowed = 0x02000000;

// Source: the limits of registry elements as Windows documents them, for 95, 98 and Me.
constexpr std::size_t kNineXValueBytes = 16300;
constexpr std::size_t kNineXKeyBytes = 64 << 10;
constexpr std::size_t kNtValueBytes = 64 << 20;
constexpr std::size_t kNtKeyBytes = 512 << 20;

AccessMask specificRights(AccessMask access) {
  if ((access & (kGenericAll | kMaximumAllowed)) != 0) access |= KEY_ALL_ACCESS;
  if ((access & kGenericRead) != 0) access |= KEY_READ;
  if ((access & kGenericWrite) != 0) access |= KEY_WRITE;
  return access;
}

bool isRoot(HKEY key) { return (key & 0x80000000) != 0; }

bool allows(AccessMask access, AccessMask needed) {
  // For a deletion any of the bits will do; everything else needs a single one.
  return needed == 0 || (access & needed) != 0;
}

Status nameFits(std::string_view name, const char* buffer, const std::uint32_t* length) {
  if (buffer == nullptr || length == nullptr) return ERROR_INVALID_PARAMETER;
  return name.size() < *length ? ERROR_SUCCESS : ERROR_MORE_DATA;
}

void copyName(std::string_view name, char* buffer, std::uint32_t* length) {
  std::memcpy(buffer, name.data(), name.size());
  buffer[name.size()] = '\0';
  *length = static_cast<std::uint32_t>(name.size());
}

Status copyData(const ValueBlob::Value& value, RegType* type, void* data, std::uint32_t* size) {
  const auto needed = static_cast<std::uint32_t>(value.data.size());
  if (type != nullptr) *type = value.type;
  if (size == nullptr) return data == nullptr ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
  const bool fits = data == nullptr || *size >= needed;
  *size = needed;
  if (!fits) return ERROR_MORE_DATA;
  if (data != nullptr && needed > 0) std::memcpy(data, value.data.data(), needed);
  return ERROR_SUCCESS;
}

}  // namespace

StoredRegistry::StoredRegistry(KeyStore& store, RegistryTraits traits)
    : store_(store),
      traits_(std::move(traits)),
      rules_(traits_.codePage),
      paths_(store_, rules_, traits_.places),
      view_(store_) {}

// Runs an operation that writes nothing, on a cache that is up to date.
template <typename Operation>
Status StoredRegistry::reading(Operation operation) {
  if ((depth_ == 0 || refused_ != ERROR_SUCCESS) && store_.changedByOthers()) forget();
  const Status status = operation();
  settle();
  return status;
}

// Runs an operation in the change that is open or in one of its own.
template <typename Operation>
Status StoredRegistry::writing(Operation operation) {
  const bool alone = depth_ == 0;
  Status status = alone ? beginChange() : refused_;
  if (status != ERROR_SUCCESS) return status;
  status = operation();
  settle();
  if (!alone) return status;
  if (status == ERROR_SUCCESS) return commitChange();
  rollbackChange();
  return status;
}

// A failure of the disk, which may come with any call that writes the cache out, ends the change.
void StoredRegistry::settle() {
  if (depth_ == 0 || refused_ != ERROR_SUCCESS || store_.failure() == ERROR_SUCCESS) return;
  refused_ = store_.failure();
  undoChange();
}

void StoredRegistry::forget() {
  paths_.forget();
  view_.forget();
}

Status StoredRegistry::startChange() {
  Status status = store_.begin();
  if (status != ERROR_SUCCESS) return status;
  if (store_.changedByOthers()) forget();
  status = store_.nextKey(firstNewKey_);
  if (status != ERROR_SUCCESS) store_.rollback();
  return status;
}

void StoredRegistry::undoChange() {
  store_.rollback();
  forget();
  handles_.loseKeysFrom(firstNewKey_);
}

Status StoredRegistry::beginChange() {
  if (store_.readOnly()) return ERROR_WRITE_PROTECT;
  if (depth_ == 0) {
    refused_ = ERROR_SUCCESS;
    const Status status = startChange();
    if (status != ERROR_SUCCESS) return status;
  }
  ++depth_;
  return ERROR_SUCCESS;
}

Status StoredRegistry::commitChange() {
  if (depth_ == 0) return ERROR_INVALID_PARAMETER;
  if (--depth_ > 0 || refused_ != ERROR_SUCCESS) return refused_;
  const Status status = store_.commit();
  if (status != ERROR_SUCCESS) undoChange();
  return status;
}

void StoredRegistry::rollbackChange() {
  if (depth_ == 0) return;
  --depth_;
  if (refused_ != ERROR_SUCCESS) return;
  // Inside another bracket it refuses the whole.
  if (depth_ > 0) refused_ = ERROR_CANCELLED;
  undoChange();
}

Status StoredRegistry::entryOf(HKEY key, AccessMask needed, OpenKeyEntry& entry) {
  if (isRoot(key)) {
    entry.access = KEY_ALL_ACCESS;
    entry.fixed = true;
    FoundKey root;
    const Status status = paths_.findRoot(key, root);
    entry.key = root.key;
    entry.under = root.under;
    return status;
  }
  const OpenKeyEntry* const found = handles_.find(key);
  if (found == nullptr) return ERROR_INVALID_HANDLE;
  if (found->key == HandleTable::kGone) return ERROR_KEY_DELETED;
  entry = *found;
  return allows(entry.access, needed) ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

Status StoredRegistry::loadKey(HKEY key, AccessMask needed, StoredKey*& stored) {
  OpenKeyEntry entry;
  const Status status = entryOf(key, needed, entry);
  return status == ERROR_SUCCESS ? store_.load(entry.key, stored) : status;
}

Status StoredRegistry::viewOf(HKEY key, AccessMask needed, LayeredKey& layered) {
  OpenKeyEntry entry;
  const Status status = entryOf(key, needed, entry);
  layered = {entry.key, entry.under};
  return status;
}

Status StoredRegistry::openHandle(const FoundKey& found, AccessMask access, HKEY& result) {
  result = handles_.add({found.key, found.under, specificRights(access), found.fixed});
  return result != 0 ? ERROR_SUCCESS : ERROR_OUTOFMEMORY;
}

Status StoredRegistry::RegOpenKeyExA(HKEY key, std::string_view subKey, AccessMask access,
                                     HKEY& result) {
  const Status checked = paths_.check(subKey);
  if (checked != ERROR_SUCCESS) return checked;
  return reading([&] {
    OpenKeyEntry entry;
    FoundKey found;
    Status status = entryOf(key, 0, entry);
    if (status != ERROR_SUCCESS) return status;
    status = paths_.find({entry.key, entry.under, entry.fixed}, subKey, found);
    // Where nothing was found, or nothing looked for, the start itself may be gone.
    StoredKey* stored = nullptr;
    if (!isRoot(key) && (status == ERROR_FILE_NOT_FOUND || subKey.empty())) {
      const Status start = store_.load(entry.key, stored);
      if (start != ERROR_SUCCESS) return start;
    }
    return status == ERROR_SUCCESS ? openHandle(found, access, result) : status;
  });
}

Status StoredRegistry::createKey(HKEY key, std::string_view subKey, FoundKey& found,
                                 bool& created) {
  OpenKeyEntry entry;
  Status status = entryOf(key, 0, entry);
  if (status == ERROR_FILE_NOT_FOUND && isRoot(key)) status = paths_.createRoot(key, entry.key);
  if (status != ERROR_SUCCESS) return status;
  StoredKey* stored = nullptr;
  status = store_.load(entry.key, stored);
  if (status != ERROR_SUCCESS) return status;
  const bool allowed = allows(entry.access, KEY_CREATE_SUB_KEY);
  view_.forget();
  return paths_.create({entry.key, entry.under, entry.fixed}, subKey, allowed, found, created);
}

Status StoredRegistry::RegCreateKeyExA(HKEY key, std::string_view subKey, AccessMask access,
                                       HKEY& result, std::uint32_t& disposition) {
  // An existing key needs no change, so that it can be opened while another process writes.
  Status status = depth_ > 0 ? ERROR_FILE_NOT_FOUND : RegOpenKeyExA(key, subKey, access, result);
  if (status != ERROR_FILE_NOT_FOUND) {
    disposition = REG_OPENED_EXISTING_KEY;
    return status;
  }
  status = paths_.check(subKey);
  if (status != ERROR_SUCCESS) return status;
  FoundKey found;
  bool created = false;
  status = writing([&] { return createKey(key, subKey, found, created); });
  if (status != ERROR_SUCCESS) return status;
  disposition = created ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
  return openHandle(found, access, result);
}

Status StoredRegistry::RegCloseKey(HKEY key) {
  if (isRoot(key)) return key <= HKEY_CURRENT_CONFIG ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
  return handles_.remove(key) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

Status StoredRegistry::RegQueryValueExA(HKEY key, std::string_view valueName, RegType* type,
                                        void* data, std::uint32_t* size) {
  return reading([&] {
    LayeredKey layered;
    ValueBlob::Value value;
    Status status = viewOf(key, KEY_QUERY_VALUE, layered);
    if (status == ERROR_SUCCESS) status = view_.value(layered, valueName, value);
    return status == ERROR_SUCCESS ? copyData(value, type, data, size) : status;
  });
}

Status StoredRegistry::checkRoom(const ValueBlob& values, std::string_view name,
                                 std::size_t size) const {
  if (size > (nt() ? kNtValueBytes : kNineXValueBytes)) return ERROR_INVALID_PARAMETER;
  const std::size_t total = values.packedBytes() + name.size() + size;
  return total <= (nt() ? kNtKeyBytes : kNineXKeyBytes) ? ERROR_SUCCESS : ERROR_OUTOFMEMORY;
}

void StoredRegistry::noteChange(const StoredKey& key) {
  // Which control set is the current one may be another now.
  if (nt() && key.folded == "SELECT") paths_.forget();
}

Status StoredRegistry::RegSetValueExA(HKEY key, std::string_view valueName, RegType type,
                                      const void* data, std::uint32_t size) {
  if (data == nullptr && size > 0) return ERROR_INVALID_PARAMETER;
  const std::string_view bytes(static_cast<const char*>(data), size);
  Status checked = rules_.checkName(valueName);
  if (checked == ERROR_SUCCESS) checked = rules_.checkData(type, bytes);
  if (checked != ERROR_SUCCESS) return checked;
  return writing([&] {
    StoredKey* stored = nullptr;
    Status status = loadKey(key, KEY_SET_VALUE, stored);
    if (status == ERROR_SUCCESS) status = checkRoom(stored->values, valueName, size);
    if (status == ERROR_SUCCESS) status = store_.accepts(*stored, type, bytes);
    if (status == ERROR_SUCCESS) status = store_.aboutToChange(*stored);
    if (status != ERROR_SUCCESS) return status;
    stored->values.set(valueName, type, bytes);
    noteChange(*stored);
    return ERROR_SUCCESS;
  });
}

Status StoredRegistry::RegDeleteValueA(HKEY key, std::string_view valueName) {
  return writing([&] {
    LayeredKey layered;
    Status status = viewOf(key, KEY_SET_VALUE, layered);
    if (status != ERROR_SUCCESS) return status;
    for (const std::int64_t id : {layered.key, layered.under}) {
      StoredKey* stored = nullptr;
      if (id != 0) status = store_.load(id, stored);
      if (status != ERROR_SUCCESS) return status;
      if (stored == nullptr || stored->values.find(valueName) == ValueBlob::kNone) continue;
      status = store_.aboutToChange(*stored);
      if (status != ERROR_SUCCESS) return status;
      stored->values.erase(stored->values.find(valueName));
      noteChange(*stored);
      return ERROR_SUCCESS;
    }
    return ERROR_FILE_NOT_FOUND;
  });
}

Status StoredRegistry::deleteKey(HKEY key, std::string_view subKey) {
  OpenKeyEntry entry;
  FoundKey found;
  Status status = entryOf(key, kAnyWrite, entry);
  if (status == ERROR_SUCCESS) {
    status = paths_.find({entry.key, entry.under, entry.fixed}, subKey, found);
  }
  if (status != ERROR_SUCCESS) return status;
  bool denied = found.fixed;
  if (!denied) status = paths_.isUserKey(found.key, denied);
  if (status == ERROR_SUCCESS && !denied && nt()) {
    status = view_.hasChildren({found.key, found.under}, denied);
  }
  if (status != ERROR_SUCCESS) return status;
  if (denied) return ERROR_ACCESS_DENIED;
  status = store_.removeTree(found.key);
  // What is named goes: the key that was covered must not come to light.
  if (status == ERROR_SUCCESS && found.under != 0) status = store_.removeTree(found.under);
  forget();
  return status;
}

Status StoredRegistry::RegDeleteKeyA(HKEY key, std::string_view subKey) {
  const Status checked = paths_.check(subKey);
  if (checked != ERROR_SUCCESS) return checked;
  return writing([&] { return deleteKey(key, subKey); });
}

Status StoredRegistry::RegEnumKeyExA(HKEY key, std::uint32_t index, char* name,
                                     std::uint32_t* nameLength) {
  return reading([&] {
    StoredKey* child = nullptr;
    StoredKey* stored = nullptr;
    LayeredKey layered;
    Status status = viewOf(key, KEY_ENUMERATE_SUB_KEYS, layered);
    if (status != ERROR_SUCCESS) return status;
    status = view_.childAt(layered, index, child);
    if (status == ERROR_NO_MORE_ITEMS) {
      const Status start = store_.load(layered.key, stored);
      return start == ERROR_SUCCESS ? status : start;
    }
    if (status == ERROR_SUCCESS) status = nameFits(child->name, name, nameLength);
    if (status == ERROR_SUCCESS) copyName(child->name, name, nameLength);
    return status;
  });
}

Status StoredRegistry::RegEnumValueA(HKEY key, std::uint32_t index, char* name,
                                     std::uint32_t* nameLength, RegType* type, void* data,
                                     std::uint32_t* dataSize) {
  return reading([&] {
    LayeredKey layered;
    ValueBlob::Value value;
    Status status = viewOf(key, KEY_QUERY_VALUE, layered);
    if (status == ERROR_SUCCESS) status = view_.valueAt(layered, index, value);
    if (status == ERROR_SUCCESS) status = nameFits(value.name, name, nameLength);
    if (status == ERROR_SUCCESS) status = copyData(value, type, data, dataSize);
    if (status == ERROR_SUCCESS) copyName(value.name, name, nameLength);
    return status;
  });
}

Status StoredRegistry::RegQueryInfoKeyA(HKEY key, KeyInfo& info) {
  return reading([&] {
    LayeredKey layered;
    const Status status = viewOf(key, KEY_QUERY_VALUE, layered);
    return status == ERROR_SUCCESS ? view_.info(layered, info) : status;
  });
}

}  // namespace korvex::platform
