// How variants become registry data and back, and how keys come and go.
#include "foundation/greg_tool.h"

#include <array>
#include <cstring>
#include <new>
#include <stdexcept>

#include "foundation/runtime_error.h"
#include "foundation/session.h"

namespace korvex::foundation {
namespace {

using namespace platform;

constexpr std::string_view kShellFolders =
    R"(Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders)";

// A value can change between the question for its size and the read; another program that never
// stops changing it must not hold this one.
constexpr int kAttempts = 8;

// Numbers above this are the registry tool's own.
constexpr int kLastRuntimeError = 1000;

bool isText(RegType type) {
  return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

void dropLastZero(std::string& text) {
  // Programs also store texts without their zero: then nothing is dropped.
  if (!text.empty() && text.back() == '\0') text.pop_back();
}

std::int32_t littleEndian(std::string_view data) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < data.size() && i < 4; ++i) {
    number |= std::uint32_t{static_cast<std::uint8_t>(data[i])} << (8 * i);
  }
  return static_cast<std::int32_t>(number);
}

std::int32_t bigEndian(std::string_view data) {
  std::array<char, 4> reversed{};
  for (std::size_t i = 0; i < data.size() && i < 4; ++i) reversed[3 - i] = data[i];
  return littleEndian({reversed.data(), reversed.size()});
}

bool isPredefined(HKEY key) { return (key & 0x80000000U) != 0; }

// "%PATH%" needs expansion, "100%" and "%%" do not.
bool namesVariable(std::string_view text) {
  const auto first = text.find('%');
  return first != std::string_view::npos && text.find('%', first + 2) != std::string_view::npos;
}

}  // namespace

void GRegTool::raiseError(int number, const std::string& description) {
  const std::string title(kAppTitle);
  throw RuntimeError(number, description,
                     title + (number <= kLastRuntimeError ? ".VBError" : ".RegTool"));
}

Status GRegTool::readValue(HKEY hKey, std::string_view name, RegType& type, std::string& data) {
  Status status = ERROR_MORE_DATA;
  for (int attempt = 0; attempt < kAttempts && status == ERROR_MORE_DATA; ++attempt) {
    std::uint32_t size = 0;
    status = registry_.RegQueryValueExA(hKey, name, &type, nullptr, &size);
    if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) return status;
    try {
      data.resize(size);
    } catch (const std::bad_alloc&) {
      raiseError(kErrorOutOfMemory, "Out of memory");
    }
    status = registry_.RegQueryValueExA(hKey, name, &type, data.data(), &size);
    if (status == ERROR_SUCCESS) data.resize(size);
  }
  return status;
}

Variant GRegTool::convert(RegType type, std::string data) {
  switch (type) {
    case REG_SZ:
    case REG_MULTI_SZ:
      dropLastZero(data);
      return Variant(std::move(data));
    case REG_EXPAND_SZ:
      dropLastZero(data);
      return Variant(systemInfo_.ExpandEnvironmentStringsA(data));
    case REG_DWORD:
      return Variant(littleEndian(data));
    case REG_DWORD_BIG_ENDIAN:
      return Variant(bigEndian(data));
    default:
      return Variant(ByteArray(data.begin(), data.end()));
  }
}

Variant GRegTool::GetRegValue(HKEY hKey, std::string_view ValueName) {
  RegType type = REG_NONE;
  std::string data;
  if (readValue(hKey, ValueName, type, data) != ERROR_SUCCESS) {
    return g_sGetRegValueMode == "RETVAL" ? Variant(std::int32_t{-1}) : Variant();
  }
  return convert(type, std::move(data));
}

Status GRegTool::CreateRegValue(const Variant& Value, HKEY hKey, std::string_view ValueName) {
  if (const auto number = Value.number()) {
    const auto bits = static_cast<std::uint32_t>(*number);
    std::array<std::uint8_t, 4> data{};
    for (std::size_t i = 0; i < 4; ++i) data[i] = static_cast<std::uint8_t>(bits >> (8 * i));
    return registry_.RegSetValueExA(hKey, ValueName, REG_DWORD, data.data(), 4);
  }
  if (const std::string* text = Value.string()) {
    return registry_.RegSetValueExA(hKey, ValueName, namesVariable(*text) ? REG_EXPAND_SZ : REG_SZ,
                                    text->c_str(), static_cast<std::uint32_t>(text->size() + 1));
  }
  if (const ByteArray* bytes = Value.bytes()) {
    const std::size_t size = bytes->size() < 2 ? 0 : bytes->size() - 2;
    return registry_.RegSetValueExA(hKey, ValueName, REG_BINARY, bytes->data(),
                                    static_cast<std::uint32_t>(size));
  }
  return ERROR_INVALID_DATA;
}

Status GRegTool::GetRegValueNext(HKEY hKey, std::uint32_t Index, std::string& ValueName,
                                 Variant& Value, RegType& ValueType, bool /*Refresh*/) {
  Status status = ERROR_MORE_DATA;
  for (int attempt = 0; attempt < kAttempts && status == ERROR_MORE_DATA; ++attempt) {
    KeyInfo info;
    status = registry_.RegQueryInfoKeyA(hKey, info);
    if (status != ERROR_SUCCESS) return status;
    std::uint32_t nameLength = info.longestValueName + 1;
    std::uint32_t dataSize = info.longestValueData;
    std::string name(nameLength, '\0');
    std::string data(dataSize, '\0');
    status = registry_.RegEnumValueA(hKey, Index, name.data(), &nameLength, &ValueType, data.data(),
                                     &dataSize);
    if (status != ERROR_SUCCESS) continue;
    name.resize(nameLength);
    data.resize(dataSize);
    ValueName = std::move(name);
    Value = convert(ValueType, std::move(data));
  }
  return status;
}

Status GRegTool::GetRegNodeNext(HKEY hKey, std::uint32_t Index, std::string& SubKeyName,
                                bool Refresh) {
  bool refresh = Refresh || hKey != enumeratedNodesKey_ || longestSubKeyName_ == 0;
  Status status = ERROR_MORE_DATA;
  for (int attempt = 0; attempt < kAttempts && status == ERROR_MORE_DATA; ++attempt) {
    if (refresh) {
      KeyInfo info;
      status = registry_.RegQueryInfoKeyA(hKey, info);
      if (status != ERROR_SUCCESS) return status;
      enumeratedNodesKey_ = hKey;
      longestSubKeyName_ = info.longestSubKeyName;
    }
    std::uint32_t length = longestSubKeyName_ + 1;
    std::string name(length, '\0');
    status = registry_.RegEnumKeyExA(hKey, Index, name.data(), &length);
    // Too small a buffer: a longer name came since, or the handle's number belongs to another key.
    refresh = true;
    if (status != ERROR_SUCCESS) continue;
    name.resize(length);
    SubKeyName = std::move(name);
  }
  return status;
}

Status GRegTool::CreateRegNode(HKEY hKey, std::string_view SubKey, HKEY& hNewKey, bool& Existed,
                               AccessMask Access) {
  std::uint32_t disposition = 0;
  const Status status = registry_.RegCreateKeyExA(hKey, SubKey, Access, hNewKey, disposition);
  Existed = status == ERROR_SUCCESS && disposition == REG_OPENED_EXISTING_KEY;
  return status;
}

Status GRegTool::DeleteOneRegNode(HKEY hKey, std::string_view SubKey) {
  const bool is9x = (systemInfo_.GetVersion() & 0x80000000U) != 0;
  if (is9x) {
    OpenKey key(registry_, hKey, SubKey, KEY_QUERY_VALUE);
    KeyInfo info;
    // There the registry itself would take the whole tree.
    if (key.status() == ERROR_SUCCESS) {
      const Status status = registry_.RegQueryInfoKeyA(key.get(), info);
      if (status != ERROR_SUCCESS) return status;
      if (info.subKeys > 0) return ERROR_ACCESS_DENIED;
    }
  }
  return registry_.RegDeleteKeyA(hKey, SubKey);
}

Status GRegTool::DeleteRegValue(HKEY hKeyRoot, std::string_view SubKey,
                                std::string_view ValueName) {
  if (SubKey.empty()) return kEmptySubKey;
  OpenKey key(registry_, hKeyRoot, SubKey, KEY_WRITE);
  if (key.status() != ERROR_SUCCESS) return key.status();
  return registry_.RegDeleteValueA(key.get(), ValueName);
}

Status GRegTool::firstSubKey(HKEY hKey, std::string& name) {
  std::array<char, kNameBufferBytes> buffer{};
  auto length = static_cast<std::uint32_t>(buffer.size());
  const Status status = registry_.RegEnumKeyExA(hKey, 0, buffer.data(), &length);
  if (status == ERROR_SUCCESS) name.assign(buffer.data(), strnlen(buffer.data(), length));
  return status;
}

Status GRegTool::DeleteRegNodes(HKEY hKey, std::string_view SubKey) {
  // Without a path the loop below would empty the root before the root itself is refused.
  if (SubKey.empty() && isPredefined(hKey)) return ERROR_ACCESS_DENIED;
  Status status = registry_.RegDeleteKeyA(hKey, SubKey);
  if (status == ERROR_SUCCESS) return status;
  {
    OpenKey key(registry_, hKey, SubKey, KEY_ALL_ACCESS);
    status = key.status();
    // Always number 0: each pass deletes the subkey that it finds.
    for (std::string name; status == ERROR_SUCCESS;) {
      status = firstSubKey(key.get(), name);
      if (status == ERROR_SUCCESS) status = DeleteRegNodes(key.get(), name);
    }
  }
  return registry_.RegDeleteKeyA(hKey, SubKey);
}

std::string GRegTool::GetRegStr(std::string_view SubKey, std::string_view ValueName,
                                HKEY hKeyRoot) {
  OpenKey key(registry_, hKeyRoot, SubKey, KEY_QUERY_VALUE);
  RegType type = REG_NONE;
  std::string data;
  if (key.status() != ERROR_SUCCESS ||
      readValue(key.get(), ValueName, type, data) != ERROR_SUCCESS || !isText(type)) {
    return {};
  }
  dropLastZero(data);
  return data;
}

std::int32_t GRegTool::GetRegInt(std::string_view SubKey, std::string_view ValueName,
                                 HKEY hKeyRoot) {
  OpenKey key(registry_, hKeyRoot, SubKey, KEY_QUERY_VALUE);
  if (key.status() != ERROR_SUCCESS) return 0;
  std::array<char, 4> data{};
  std::uint32_t size = data.size();
  const Status status =
      registry_.RegQueryValueExA(key.get(), ValueName, nullptr, data.data(), &size);
  return status == ERROR_SUCCESS ? littleEndian({data.data(), size}) : 0;
}

std::string GRegTool::shellFolder(std::string_view value) {
  return GetRegStr(kShellFolders, value, HKEY_CURRENT_USER) + '\\';
}

}  // namespace korvex::foundation
