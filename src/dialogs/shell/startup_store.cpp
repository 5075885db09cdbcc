// Keeping and giving back records.
#include "dialogs/shell/startup_store.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "engine/at_once.h"
#include "platform/text/text.h"

namespace korvex::dialogs {

using engine::RawValue;
using platform::ERROR_FILE_NOT_FOUND;
using platform::ERROR_SUCCESS;
using platform::Status;

Status listValues(foundation::Session& session, platform::HKEY root, std::string_view path,
                  std::vector<NamedValue>& values) {
  values.clear();
  platform::Registry& registry = session.registry();
  const platform::OpenKey key(registry, root, path, platform::KEY_QUERY_VALUE);
  Status status = key.status();
  std::array<char, platform::kNameBufferBytes> name;
  for (std::uint32_t index = 0; status == ERROR_SUCCESS; ++index) {
    auto length = static_cast<std::uint32_t>(name.size());
    status =
        registry.RegEnumValueA(key.get(), index, name.data(), &length, nullptr, nullptr, nullptr);
    if (status != ERROR_SUCCESS) break;
    NamedValue found{{name.data(), length}, {}};
    status = engine::readRawValue(registry, key.get(), found.name, found.value);
    values.push_back(std::move(found));
  }
  return status == platform::ERROR_NO_MORE_ITEMS ? ERROR_SUCCESS : status;
}

std::string shownText(const RawValue& value) {
  if (value.type == platform::REG_SZ || value.type == platform::REG_EXPAND_SZ) {
    return value.bytes.substr(0, value.bytes.find('\0'));
  }
  if (value.type == platform::REG_DWORD && value.bytes.size() == 4) {
    return fmt::format("{}", static_cast<std::uint32_t>(value.number(0)));
  }
  std::string bytes;
  for (const char c : value.bytes) {
    bytes += fmt::format("{}{:02x}", bytes.empty() ? "" : " ", static_cast<std::uint8_t>(c));
  }
  return bytes;
}

RawValue textValue(const std::string& text) { return {platform::REG_SZ, text + '\0'}; }

bool sameValue(const RawValue& left, const RawValue& right) {
  return left.type == right.type && left.bytes == right.bytes;
}

StartupStore::StartupStore(foundation::Session& session, platform::HKEY root, std::string_view area)
    : session_(session),
      root_(root),
      key_(fmt::format("SOFTWARE\\Korvex\\App Manager\\{}", area)),
      deleted_(session, root, "Startup") {}

Status StartupStore::find(const std::string& name, RawValue& value) const {
  const Status status = engine::readRawValue(session_.registry(), root_, key_, name, value);
  if (status != ERROR_SUCCESS) return status;
  RawValue original;
  const Status besides =
      engine::readRawValue(session_.registry(), root_, originals(), name, original);
  if (besides == ERROR_SUCCESS && value.type == platform::REG_SZ &&
      shownText(original) == shownText(value)) {
    value = original;
  }
  return engine::missingIsFine(besides);
}

Status StartupStore::list(std::vector<NamedValue>& records) const {
  Status status = engine::missingIsFine(listValues(session_, root_, key_, records));
  for (NamedValue& record : records) {
    if (status == ERROR_SUCCESS) status = find(record.name, record.value);
  }
  return status;
}

Status StartupStore::freeName(std::string& name) const {
  const std::string wanted = name;
  Status status = ERROR_SUCCESS;
  for (int number = 2; status == ERROR_SUCCESS; ++number) {
    RawValue taken;
    status = engine::readRawValue(session_.registry(), root_, key_, name, taken);
    if (status == ERROR_SUCCESS) name = fmt::format("{} ({})", wanted, number);
  }
  return engine::missingIsFine(status);
}

Status StartupStore::keep(const std::string& name, const RawValue& value) {
  const std::string text = shownText(value);
  RawValue there;
  Status status = find(name, there);
  if (status == ERROR_SUCCESS && shownText(there) != text) status = forget(name, name);
  if (engine::missingIsFine(status) != ERROR_SUCCESS) return status;
  status = engine::putText(session_, root_, key_, name, text);
  if (status != ERROR_SUCCESS) return status;
  if (sameValue(value, textValue(text))) {
    return engine::dropValue(session_, root_, originals(), name);
  }
  return engine::putRaw(session_, root_, originals(), name, value);
}

Status StartupStore::drop(const std::string& name) {
  const Status status = session_.regTool.DeleteRegValue(root_, key_, name);
  return status == ERROR_SUCCESS ? engine::dropValue(session_, root_, originals(), name) : status;
}

// Its Original stays: it counts again once the record is taken back.
Status StartupStore::forget(const std::string& name, const std::string& nameForPeople) {
  return deleted_.removeValue(key_, name, nameForPeople);
}

}  // namespace korvex::dialogs
