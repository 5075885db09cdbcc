// Registries around another registry.
#include "platform/common/registry_decorators.h"

#include "platform/text/reg_names.h"

namespace korvex::platform {

// ---- ForwardingRegistry

Status ForwardingRegistry::RegOpenKeyExA(HKEY key, std::string_view subKey, AccessMask access,
                                         HKEY& result) {
  const Status status = admit();
  return status != ERROR_SUCCESS ? status : inner_.RegOpenKeyExA(key, subKey, access, result);
}

Status ForwardingRegistry::RegCreateKeyExA(HKEY key, std::string_view subKey, AccessMask access,
                                           HKEY& result, std::uint32_t& disposition) {
  const Status status = admit();
  return status != ERROR_SUCCESS ? status
                                 : inner_.RegCreateKeyExA(key, subKey, access, result, disposition);
}

Status ForwardingRegistry::RegCloseKey(HKEY key) { return inner_.RegCloseKey(key); }

Status ForwardingRegistry::RegQueryValueExA(HKEY key, std::string_view valueName, RegType* type,
                                            void* data, std::uint32_t* size) {
  const Status status = admit();
  return status != ERROR_SUCCESS ? status
                                 : inner_.RegQueryValueExA(key, valueName, type, data, size);
}

Status ForwardingRegistry::RegSetValueExA(HKEY key, std::string_view valueName, RegType type,
                                          const void* data, std::uint32_t size) {
  const Status status = admit();
  return status != ERROR_SUCCESS ? status : inner_.RegSetValueExA(key, valueName, type, data, size);
}

Status ForwardingRegistry::RegDeleteValueA(HKEY key, std::string_view valueName) {
  const Status status = admit();
  return status != ERROR_SUCCESS ? status : inner_.RegDeleteValueA(key, valueName);
}

Status ForwardingRegistry::RegDeleteKeyA(HKEY key, std::string_view subKey) {
  const Status status = admit();
  return status != ERROR_SUCCESS ? status : inner_.RegDeleteKeyA(key, subKey);
}

Status ForwardingRegistry::RegEnumKeyExA(HKEY key, std::uint32_t index, char* name,
                                         std::uint32_t* nameLength) {
  const Status status = admit();
  return status != ERROR_SUCCESS ? status : inner_.RegEnumKeyExA(key, index, name, nameLength);
}

Status ForwardingRegistry::RegEnumValueA(HKEY key, std::uint32_t index, char* name,
                                         std::uint32_t* nameLength, RegType* type, void* data,
                                         std::uint32_t* dataSize) {
  const Status status = admit();
  return status != ERROR_SUCCESS
             ? status
             : inner_.RegEnumValueA(key, index, name, nameLength, type, data, dataSize);
}

Status ForwardingRegistry::RegQueryInfoKeyA(HKEY key, KeyInfo& info) {
  const Status status = admit();
  return status != ERROR_SUCCESS ? status : inner_.RegQueryInfoKeyA(key, info);
}

Status ForwardingRegistry::beginChange() {
  const Status status = admit();
  return status != ERROR_SUCCESS ? status : inner_.beginChange();
}

Status ForwardingRegistry::commitChange() {
  const Status status = admit();
  return status != ERROR_SUCCESS ? status : inner_.commitChange();
}

void ForwardingRegistry::rollbackChange() { inner_.rollbackChange(); }

Status ForwardingRegistry::flush() {
  const Status status = admit();
  return status != ERROR_SUCCESS ? status : inner_.flush();
}

// ---- FailingRegistry

Status FailingRegistry::admit() {
  ++calls_;
  const bool fails =
      nth_ > 0 && (afterwards_ == Afterwards::KeepFailing ? calls_ >= nth_ : calls_ == nth_);
  return fails ? status_ : ERROR_SUCCESS;
}

Status FailingRegistry::commitChange() {
  const Status status = admit();
  if (status == ERROR_SUCCESS) return inner_.commitChange();
  inner_.rollbackChange();
  return status;
}

// ---- RecordingRegistry

RecordingRegistry::Place RecordingRegistry::placeOf(HKEY key, std::string_view subKey) const {
  const auto known = places_.find(key);
  Place place = known != places_.end() ? known->second : Place{key, ""};
  if (!place.path.empty() && !subKey.empty()) place.path += '\\';
  place.path += subKey;
  return place;
}

bool RecordingRegistry::keyExists(const Place& place) {
  return OpenKey(inner_, place.root, place.path, KEY_QUERY_VALUE).status() == ERROR_SUCCESS;
}

std::optional<RegistryData> RecordingRegistry::dataOf(const Place& place,
                                                      std::string_view valueName) {
  // By a handle of its own: the writer's need not be open for reading.
  const OpenKey key(inner_, place.root, place.path, KEY_QUERY_VALUE);
  RegistryData data;
  std::uint32_t size = 0;
  if (key.status() != ERROR_SUCCESS) return std::nullopt;
  Status status = inner_.RegQueryValueExA(key.get(), valueName, &data.type, nullptr, &size);
  if (status != ERROR_SUCCESS) return std::nullopt;
  data.bytes.resize(size);
  status = inner_.RegQueryValueExA(key.get(), valueName, &data.type, data.bytes.data(), &size);
  return status == ERROR_SUCCESS ? std::optional(data) : std::nullopt;
}

Status RecordingRegistry::RegOpenKeyExA(HKEY key, std::string_view subKey, AccessMask access,
                                        HKEY& result) {
  const Status status = ForwardingRegistry::RegOpenKeyExA(key, subKey, access, result);
  if (status == ERROR_SUCCESS) places_[result] = placeOf(key, subKey);
  return status;
}

// One record for each key on the way that was not there; existing: the length of the path that was.
void RecordingRegistry::recordCreated(const Place& place, std::size_t existing) {
  std::size_t end = existing;
  while (end < place.path.size()) {
    end = place.path.find('\\', end + 1);
    const std::string path = place.path.substr(0, end);
    records_.push_back(
        {RegistryWrite::CreateKey, fullKeyName(place.root, path), "", std::nullopt, std::nullopt});
    if (end == std::string::npos) return;
  }
}

Status RecordingRegistry::RegCreateKeyExA(HKEY key, std::string_view subKey, AccessMask access,
                                          HKEY& result, std::uint32_t& disposition) {
  const Place place = placeOf(key, subKey);
  Place existing = place;
  while (!existing.path.empty() && !keyExists(existing)) {
    const std::size_t end = existing.path.rfind('\\');
    existing.path.resize(end == std::string::npos ? 0 : end);
  }
  const Status status =
      ForwardingRegistry::RegCreateKeyExA(key, subKey, access, result, disposition);
  if (status != ERROR_SUCCESS) return status;
  places_[result] = place;
  recordCreated(place, existing.path.size());
  return status;
}

Status RecordingRegistry::RegCloseKey(HKEY key) {
  places_.erase(key);
  return ForwardingRegistry::RegCloseKey(key);
}

Status RecordingRegistry::RegSetValueExA(HKEY key, std::string_view valueName, RegType type,
                                         const void* data, std::uint32_t size) {
  const Place place = placeOf(key, "");
  const auto before = dataOf(place, valueName);
  const Status status = ForwardingRegistry::RegSetValueExA(key, valueName, type, data, size);
  if (status != ERROR_SUCCESS) return status;
  const RegistryData after{type, std::string(static_cast<const char*>(data), size)};
  records_.push_back({RegistryWrite::SetValue, fullKeyName(place.root, place.path),
                      std::string(valueName), before, after});
  return status;
}

Status RecordingRegistry::RegDeleteValueA(HKEY key, std::string_view valueName) {
  const Place place = placeOf(key, "");
  const auto before = dataOf(place, valueName);
  const Status status = ForwardingRegistry::RegDeleteValueA(key, valueName);
  if (status != ERROR_SUCCESS) return status;
  records_.push_back({RegistryWrite::DeleteValue, fullKeyName(place.root, place.path),
                      std::string(valueName), before, std::nullopt});
  return status;
}

Status RecordingRegistry::RegDeleteKeyA(HKEY key, std::string_view subKey) {
  const Status status = ForwardingRegistry::RegDeleteKeyA(key, subKey);
  if (status != ERROR_SUCCESS) return status;
  const Place place = placeOf(key, subKey);
  records_.push_back({RegistryWrite::DeleteKey, fullKeyName(place.root, place.path), "",
                      std::nullopt, std::nullopt});
  return status;
}

Status RecordingRegistry::beginChange() {
  const Status status = ForwardingRegistry::beginChange();
  if (status == ERROR_SUCCESS && depth_++ == 0) {
    changeStart_ = records_.size();
    refused_ = false;
  }
  return status;
}

// An inner change that was given up refuses the whole, so the outermost decides about all records.
void RecordingRegistry::endChange(bool kept) {
  if (depth_ == 0) return;
  refused_ = refused_ || !kept;
  if (--depth_ == 0 && refused_) records_.resize(changeStart_);
}

Status RecordingRegistry::commitChange() {
  const Status status = ForwardingRegistry::commitChange();
  endChange(status == ERROR_SUCCESS);
  return status;
}

void RecordingRegistry::rollbackChange() {
  ForwardingRegistry::rollbackChange();
  endChange(false);
}

// ---- PretendingRegistry

Status PretendingRegistry::RegOpenKeyExA(HKEY key, std::string_view subKey, AccessMask access,
                                         HKEY& result) {
  if (!pretended(key)) return ForwardingRegistry::RegOpenKeyExA(key, subKey, access, result);
  if (!subKey.empty()) return ERROR_FILE_NOT_FOUND;
  result = nextHandle_++;
  return ERROR_SUCCESS;
}

Status PretendingRegistry::RegCreateKeyExA(HKEY key, std::string_view subKey, AccessMask access,
                                           HKEY& result, std::uint32_t& disposition) {
  const Status status = RegOpenKeyExA(key, subKey, access, result);
  disposition = status == ERROR_SUCCESS ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
  if (status != ERROR_FILE_NOT_FOUND) return status;
  result = nextHandle_++;
  return ERROR_SUCCESS;
}

Status PretendingRegistry::RegCloseKey(HKEY key) {
  return pretended(key) ? ERROR_SUCCESS : ForwardingRegistry::RegCloseKey(key);
}

Status PretendingRegistry::RegQueryValueExA(HKEY key, std::string_view valueName, RegType* type,
                                            void* data, std::uint32_t* size) {
  if (pretended(key)) return ERROR_FILE_NOT_FOUND;
  return ForwardingRegistry::RegQueryValueExA(key, valueName, type, data, size);
}

Status PretendingRegistry::RegSetValueExA(HKEY key, std::string_view /*valueName*/,
                                          RegType /*type*/, const void* data, std::uint32_t size) {
  if (data == nullptr && size > 0) return ERROR_INVALID_PARAMETER;
  // A handle that is not open, or whose key is gone, is told as by a real write.
  HKEY same = 0;
  const Status status = RegOpenKeyExA(key, "", KEY_SET_VALUE, same);
  if (status == ERROR_SUCCESS) RegCloseKey(same);
  return status;
}

Status PretendingRegistry::RegDeleteValueA(HKEY key, std::string_view valueName) {
  const Status status = RegQueryValueExA(key, valueName, nullptr, nullptr, nullptr);
  // A handle that may not read does not tell whether the value is there.
  return status == ERROR_ACCESS_DENIED ? ERROR_SUCCESS : status;
}

Status PretendingRegistry::RegDeleteKeyA(HKEY key, std::string_view subKey) {
  HKEY open = 0;
  const Status status = RegOpenKeyExA(key, subKey, KEY_READ, open);
  if (status == ERROR_SUCCESS) RegCloseKey(open);
  return status;
}

Status PretendingRegistry::RegEnumKeyExA(HKEY key, std::uint32_t index, char* name,
                                         std::uint32_t* nameLength) {
  if (pretended(key)) return ERROR_NO_MORE_ITEMS;
  return ForwardingRegistry::RegEnumKeyExA(key, index, name, nameLength);
}

Status PretendingRegistry::RegEnumValueA(HKEY key, std::uint32_t index, char* name,
                                         std::uint32_t* nameLength, RegType* type, void* data,
                                         std::uint32_t* dataSize) {
  if (pretended(key)) return ERROR_NO_MORE_ITEMS;
  return ForwardingRegistry::RegEnumValueA(key, index, name, nameLength, type, data, dataSize);
}

Status PretendingRegistry::RegQueryInfoKeyA(HKEY key, KeyInfo& info) {
  if (!pretended(key)) return ForwardingRegistry::RegQueryInfoKeyA(key, info);
  info = {};
  return ERROR_SUCCESS;
}

}  // namespace korvex::platform
