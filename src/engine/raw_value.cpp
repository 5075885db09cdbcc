// Reading and copying values without a conversion.
#include "engine/raw_value.h"

namespace korvex::engine {

using platform::HKEY;
using platform::Status;

std::string RawValue::text() const {
  if (type != platform::REG_SZ && type != platform::REG_EXPAND_SZ) return {};
  std::string result = bytes;
  if (result.ends_with('\0')) result.pop_back();
  return result;
}

std::int32_t RawValue::number(std::int32_t otherwise) const {
  if (type != platform::REG_DWORD || bytes.size() != 4) return otherwise;
  std::uint32_t result = 0;
  for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) {
    result = result << 8 | static_cast<std::uint8_t>(*byte);
  }
  return static_cast<std::int32_t>(result);
}

Status readRawValue(platform::Registry& registry, HKEY key, std::string_view name,
                    RawValue& value) {
  std::uint32_t size = 0;
  Status status = registry.RegQueryValueExA(key, name, &value.type, nullptr, &size);
  // It may grow between the two calls: another program's business, so ask again.
  for (int attempt = 0; attempt < 8 && status == platform::ERROR_SUCCESS; ++attempt) {
    // One byte more: an empty value needs a buffer that is not null.
    value.bytes.assign(size + 1, '\0');
    status = registry.RegQueryValueExA(key, name, &value.type, value.bytes.data(), &size);
    if (status == platform::ERROR_SUCCESS) {
      value.bytes.resize(size);
      return status;
    }
    if (status == platform::ERROR_MORE_DATA) status = platform::ERROR_SUCCESS;
  }
  return status == platform::ERROR_SUCCESS ? platform::ERROR_MORE_DATA : status;
}

Status readRawValue(platform::Registry& registry, HKEY root, std::string_view path,
                    std::string_view name, RawValue& value) {
  const platform::OpenKey key(registry, root, path, platform::KEY_QUERY_VALUE);
  return key.status() == platform::ERROR_SUCCESS ? readRawValue(registry, key.get(), name, value)
                                                 : key.status();
}

Status copyRawValue(platform::Registry& registry, HKEY from, std::string_view fromName, HKEY to,
                    std::string_view toName) {
  RawValue value;
  const Status status = readRawValue(registry, from, fromName, value);
  if (status == platform::ERROR_SUCCESS) {
    return registry.RegSetValueExA(to, toName, value.type, value.bytes.data(),
                                   static_cast<std::uint32_t>(value.bytes.size()));
  }
  return status == platform::ERROR_FILE_NOT_FOUND
             ? missingIsFine(registry.RegDeleteValueA(to, toName))
             : status;
}

Status listSubKeys(platform::Registry& registry, HKEY root, std::string_view path,
                   platform::AccessMask access, std::vector<std::string>& names) {
  names.clear();
  const platform::OpenKey key(registry, root, path, access);
  if (key.status() != platform::ERROR_SUCCESS) return key.status();
  char name[platform::kNameBufferBytes];
  Status status = platform::ERROR_SUCCESS;
  for (std::uint32_t index = 0; status == platform::ERROR_SUCCESS; ++index) {
    std::uint32_t length = sizeof name;
    status = registry.RegEnumKeyExA(key.get(), index, name, &length);
    if (status == platform::ERROR_SUCCESS) names.emplace_back(name, length);
  }
  return status == platform::ERROR_NO_MORE_ITEMS ? platform::ERROR_SUCCESS : status;
}

Status isEmptyKey(platform::Registry& registry, HKEY root, std::string_view path, bool& empty) {
  const platform::OpenKey key(registry, root, path, platform::KEY_READ);
  platform::KeyInfo info;
  const Status status = key.status() == platform::ERROR_SUCCESS
                            ? registry.RegQueryInfoKeyA(key.get(), info)
                            : key.status();
  empty = status == platform::ERROR_SUCCESS && info.subKeys == 0 && info.values == 0;
  return status;
}

}  // namespace korvex::engine
