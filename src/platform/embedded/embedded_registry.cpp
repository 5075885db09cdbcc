// The registry calls over KeyStore: handles, rights, limits.
#include "platform/embedded/embedded_registry.h"

#include <algorithm>
#include <cstring>

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

EmbeddedRegistry::EmbeddedRegistry(Database& database, const RegistryTraits& traits)
    : database_(database),
      family_(traits.family),
      rules_(traits.family == Family::Nt ? nullptr : traits.codePage),
      store_(database, traits.family == Family::Nt ? KeyOrder::Alphabetical : KeyOrder::Creation),
      paths_(store_, rules_, traits.family, traits.userKey) {}

// Runs an operation that writes nothing, on a cache that is up to date.
template <typename Operation>
Status EmbeddedRegistry::reading(Operation operation) {
  if ((depth_ == 0 || refused_ != ERROR_SUCCESS) && database_.changedByOthers()) forget();
  const Status status = operation();
  settle();
  return status;
}

// Runs an operation in the change that is open or in one of its own.
template <typename Operation>
Status EmbeddedRegistry::writing(Operation operation) {
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
void EmbeddedRegistry::settle() {
  if (depth_ == 0 || refused_ != ERROR_SUCCESS || database_.failure() == ERROR_SUCCESS) return;
  refused_ = database_.failure();
  undoChange();
}

void EmbeddedRegistry::forget() {
  store_.forget();
  paths_.forget();
}

Status EmbeddedRegistry::startChange() {
  Status status = database_.begin();
  if (status != ERROR_SUCCESS) return status;
  if (database_.changedByOthers()) forget();
  status = store_.nextKey(firstNewKey_);
  if (status != ERROR_SUCCESS) database_.rollback();
  return status;
}

void EmbeddedRegistry::undoChange() {
  database_.rollback();
  forget();
  handles_.loseKeysFrom(firstNewKey_);
}

Status EmbeddedRegistry::beginChange() {
  if (database_.readOnly()) return ERROR_WRITE_PROTECT;
  if (depth_ == 0) {
    refused_ = ERROR_SUCCESS;
    const Status status = startChange();
    if (status != ERROR_SUCCESS) return status;
  }
  ++depth_;
  return ERROR_SUCCESS;
}

Status EmbeddedRegistry::commitChange() {
  if (depth_ == 0) return ERROR_INVALID_PARAMETER;
  if (--depth_ > 0 || refused_ != ERROR_SUCCESS) return refused_;
  Status status = store_.flush();
  if (status == ERROR_SUCCESS) status = database_.commit();
  if (status != ERROR_SUCCESS) undoChange();
  return status;
}

void EmbeddedRegistry::rollbackChange() {
  if (depth_ == 0) return;
  --depth_;
  if (refused_ != ERROR_SUCCESS) return;
  // Inside another bracket it refuses the whole.
  if (depth_ > 0) refused_ = ERROR_CANCELLED;
  undoChange();
}

Status EmbeddedRegistry::entryOf(HKEY key, AccessMask needed, OpenKeyEntry& entry) {
  if (isRoot(key)) {
    entry.access = KEY_ALL_ACCESS;
    entry.fixed = true;
    return paths_.findRoot(key, entry.key);
  }
  const OpenKeyEntry* const found = handles_.find(key);
  if (found == nullptr) return ERROR_INVALID_HANDLE;
  if (found->key == HandleTable::kGone) return ERROR_KEY_DELETED;
  entry = *found;
  return allows(entry.access, needed) ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

Status EmbeddedRegistry::loadKey(HKEY key, AccessMask needed, StoredKey*& stored) {
  OpenKeyEntry entry;
  const Status status = entryOf(key, needed, entry);
  return status == ERROR_SUCCESS ? store_.load(entry.key, stored) : status;
}

Status EmbeddedRegistry::openHandle(const FoundKey& found, AccessMask access, HKEY& result) {
  result = handles_.add({found.key, specificRights(access), found.fixed});
  return result != 0 ? ERROR_SUCCESS : ERROR_OUTOFMEMORY;
}

Status EmbeddedRegistry::RegOpenKeyExA(HKEY key, std::string_view subKey, AccessMask access,
                                       HKEY& result) {
  const Status checked = paths_.check(subKey);
  if (checked != ERROR_SUCCESS) return checked;
  return reading([&] {
    OpenKeyEntry entry;
    FoundKey found;
    Status status = entryOf(key, 0, entry);
    if (status != ERROR_SUCCESS) return status;
    status = paths_.find(entry.key, subKey, found);
    if (subKey.empty()) found.fixed = entry.fixed;
    // Where nothing was found, or nothing looked for, the start itself may be gone.
    StoredKey* stored = nullptr;
    if (!isRoot(key) && (status == ERROR_FILE_NOT_FOUND || subKey.empty())) {
      const Status start = store_.load(entry.key, stored);
      if (start != ERROR_SUCCESS) return start;
    }
    return status == ERROR_SUCCESS ? openHandle(found, access, result) : status;
  });
}

Status EmbeddedRegistry::createKey(HKEY key, std::string_view subKey, FoundKey& found,
                                   bool& created) {
  OpenKeyEntry entry;
  Status status = entryOf(key, 0, entry);
  if (status == ERROR_FILE_NOT_FOUND) status = paths_.createRoot(key, entry.key);
  if (status != ERROR_SUCCESS) return status;
  StoredKey* stored = nullptr;
  status = store_.load(entry.key, stored);
  if (status != ERROR_SUCCESS) return status;
  const bool allowed = allows(entry.access, KEY_CREATE_SUB_KEY);
  status = paths_.create(entry.key, subKey, allowed, found, created);
  if (subKey.empty()) found.fixed = entry.fixed;
  return status;
}

Status EmbeddedRegistry::RegCreateKeyExA(HKEY key, std::string_view subKey, AccessMask access,
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

Status EmbeddedRegistry::RegCloseKey(HKEY key) {
  if (isRoot(key)) return key <= HKEY_CURRENT_CONFIG ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
  return handles_.remove(key) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

Status EmbeddedRegistry::RegQueryValueExA(HKEY key, std::string_view valueName, RegType* type,
                                          void* data, std::uint32_t* size) {
  return reading([&] {
    StoredKey* stored = nullptr;
    const Status status = loadKey(key, KEY_QUERY_VALUE, stored);
    if (status != ERROR_SUCCESS) return status;
    const std::size_t position = stored->values.find(valueName);
    if (position == ValueBlob::kNone) return ERROR_FILE_NOT_FOUND;
    return copyData(stored->values.at(position), type, data, size);
  });
}

Status EmbeddedRegistry::checkRoom(const ValueBlob& values, std::string_view name,
                                   std::size_t size) const {
  const bool nt = family_ == Family::Nt;
  if (size > (nt ? kNtValueBytes : kNineXValueBytes)) return ERROR_INVALID_PARAMETER;
  const std::size_t total = values.packedBytes() + name.size() + size;
  return total <= (nt ? kNtKeyBytes : kNineXKeyBytes) ? ERROR_SUCCESS : ERROR_OUTOFMEMORY;
}

void EmbeddedRegistry::noteChange(StoredKey& key) {
  key.changed = true;
  // Which control set is the current one may be another now.
  if (family_ == Family::Nt && key.folded == "SELECT") paths_.forget();
}

Status EmbeddedRegistry::RegSetValueExA(HKEY key, std::string_view valueName, RegType type,
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
    if (status != ERROR_SUCCESS) return status;
    stored->values.set(valueName, type, bytes);
    noteChange(*stored);
    return ERROR_SUCCESS;
  });
}

Status EmbeddedRegistry::RegDeleteValueA(HKEY key, std::string_view valueName) {
  return writing([&] {
    StoredKey* stored = nullptr;
    const Status status = loadKey(key, KEY_SET_VALUE, stored);
    if (status != ERROR_SUCCESS) return status;
    const std::size_t position = stored->values.find(valueName);
    if (position == ValueBlob::kNone) return ERROR_FILE_NOT_FOUND;
    stored->values.erase(position);
    noteChange(*stored);
    return ERROR_SUCCESS;
  });
}

Status EmbeddedRegistry::deleteKey(HKEY key, std::string_view subKey) {
  OpenKeyEntry entry;
  FoundKey found;
  Status status = entryOf(key, kAnyWrite, entry);
  if (status == ERROR_SUCCESS) status = paths_.find(entry.key, subKey, found);
  if (status != ERROR_SUCCESS) return status;
  if (subKey.empty()) found.fixed = entry.fixed;
  bool denied = found.fixed;
  if (!denied) status = paths_.isUserKey(found.key, denied);
  if (status == ERROR_SUCCESS && !denied && family_ == Family::Nt) {
    status = store_.hasChildren(found.key, denied);
  }
  if (status != ERROR_SUCCESS) return status;
  if (denied) return ERROR_ACCESS_DENIED;
  status = store_.removeTree(found.key);
  paths_.forget();
  return status;
}

Status EmbeddedRegistry::RegDeleteKeyA(HKEY key, std::string_view subKey) {
  const Status checked = paths_.check(subKey);
  if (checked != ERROR_SUCCESS) return checked;
  return writing([&] { return deleteKey(key, subKey); });
}

Status EmbeddedRegistry::RegEnumKeyExA(HKEY key, std::uint32_t index, char* name,
                                       std::uint32_t* nameLength) {
  return reading([&] {
    StoredKey* child = nullptr;
    StoredKey* stored = nullptr;
    OpenKeyEntry entry;
    Status status = entryOf(key, KEY_ENUMERATE_SUB_KEYS, entry);
    if (status != ERROR_SUCCESS) return status;
    status = store_.childAt(entry.key, index, child);
    if (status == ERROR_NO_MORE_ITEMS) {
      const Status start = store_.load(entry.key, stored);
      return start == ERROR_SUCCESS ? status : start;
    }
    if (status == ERROR_SUCCESS) status = nameFits(child->name, name, nameLength);
    if (status == ERROR_SUCCESS) copyName(child->name, name, nameLength);
    return status;
  });
}

Status EmbeddedRegistry::RegEnumValueA(HKEY key, std::uint32_t index, char* name,
                                       std::uint32_t* nameLength, RegType* type, void* data,
                                       std::uint32_t* dataSize) {
  return reading([&] {
    StoredKey* stored = nullptr;
    Status status = loadKey(key, KEY_QUERY_VALUE, stored);
    if (status != ERROR_SUCCESS) return status;
    if (index >= stored->values.count()) return ERROR_NO_MORE_ITEMS;
    const auto value = stored->values.at(stored->values.position(index));
    status = nameFits(value.name, name, nameLength);
    if (status == ERROR_SUCCESS) status = copyData(value, type, data, dataSize);
    if (status == ERROR_SUCCESS) copyName(value.name, name, nameLength);
    return status;
  });
}

Status EmbeddedRegistry::RegQueryInfoKeyA(HKEY key, KeyInfo& info) {
  return reading([&] {
    StoredKey* stored = nullptr;
    Status status = loadKey(key, KEY_QUERY_VALUE, stored);
    if (status != ERROR_SUCCESS) return status;
    KeyInfo result;
    result.values = static_cast<std::uint32_t>(stored->values.count());
    for (std::uint32_t i = 0; i < result.values; ++i) {
      const auto value = stored->values.at(stored->values.position(i));
      const auto name = static_cast<std::uint32_t>(value.name.size());
      const auto data = static_cast<std::uint32_t>(value.data.size());
      result.longestValueName = std::max(result.longestValueName, name);
      result.longestValueData = std::max(result.longestValueData, data);
    }
    std::size_t children = 0;
    std::size_t longest = 0;
    status = store_.countChildren(stored->id, children, longest);
    result.subKeys = static_cast<std::uint32_t>(children);
    result.longestSubKeyName = static_cast<std::uint32_t>(longest);
    if (status == ERROR_SUCCESS) info = result;
    return status;
  });
}

}  // namespace korvex::platform
