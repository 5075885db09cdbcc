// GRegTool: the one class through which Korvex touches the registry.
//
// Keys are open handles or predefined roots; paths are relative to them and have no leading
// backslash. A missing key or value raises nothing: readers answer with "", 0, empty or -1, the
// other methods with the Win32 status. Text of a value comes back without its last zero, so that a
// string list keeps its inner ones.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/variant.h"
#include "platform/registry.h"
#include "platform/system_info.h"

namespace korvex::foundation {

using platform::AccessMask;
using platform::HKEY;
using platform::RegType;
using platform::Status;

// DeleteRegValue's answer to an empty path.
constexpr Status kEmptySubKey = -1002;

class GRegTool {
 public:
  GRegTool(platform::Registry& registry, platform::SystemInfo& systemInfo)
      : registry_(registry), systemInfo_(systemInfo) {}

  // Text types as a string (REG_EXPAND_SZ expanded), DWORDs of both orders as 32-bit integer,
  // everything else as a byte array. Missing: empty, or -1 where g_sGetRegValueMode is "RETVAL".
  Variant GetRegValue(HKEY hKey, std::string_view ValueName);
  // Integers and Booleans become REG_DWORD (true is 0xFFFFFFFF), a string REG_SZ, or REG_EXPAND_SZ
  // where a second '%' stands two or more characters after the first, a byte array REG_BINARY. Of a
  // byte array TWO BYTES FEWER THAN IT HOLDS are written: callers size their arrays with two
  // spare bytes at the end. An empty variant writes nothing and gives 13.
  Status CreateRegValue(const Variant& Value, HKEY hKey, std::string_view ValueName);
  // Name, data and raw type of value number Index; 259 past the end. The key is asked anew for its
  // longest name and data at every call, so Refresh changes nothing.
  Status GetRegValueNext(HKEY hKey, std::uint32_t Index, std::string& ValueName, Variant& Value,
                         RegType& ValueType, bool Refresh);
  // Name of subkey number Index. Keeps the last key's longest name until Refresh or another key.
  Status GetRegNodeNext(HKEY hKey, std::uint32_t Index, std::string& SubKeyName, bool Refresh);
  // The caller closes hNewKey. Existed tells whether the key stood there before.
  Status CreateRegNode(HKEY hKey, std::string_view SubKey, HKEY& hNewKey, bool& Existed,
                       AccessMask Access);
  // Deletes a key without subkeys; 5 where it has some, on Windows 95, 98 and Me too.
  Status DeleteOneRegNode(HKEY hKey, std::string_view SubKey);
  // 2 for a missing value or key, kEmptySubKey for an empty path.
  Status DeleteRegValue(HKEY hKeyRoot, std::string_view SubKey, std::string_view ValueName);
  // Deletes a key with everything beneath it; stops at the first key that cannot go, and what went
  // before stays gone: bracket it where that matters. A root itself is refused (5).
  Status DeleteRegNodes(HKEY hKey, std::string_view SubKey);
  // Text types only; every other type, a missing key or value: "". REG_EXPAND_SZ is not expanded.
  std::string GetRegStr(std::string_view SubKey, std::string_view ValueName, HKEY hKeyRoot);
  // Up to four bytes of data of any type as a little-endian number; longer data, or none: 0.
  std::int32_t GetRegInt(std::string_view SubKey, std::string_view ValueName, HKEY hKeyRoot);

  // The user's shell folders, "\" appended; a missing value gives "\".
  std::string GetDesktop() { return shellFolder("Desktop"); }
  std::string GetFavorites() { return shellFolder("Favorites"); }
  std::string GetStartMenu() { return shellFolder("Start Menu"); }
  std::string GetStartup() { return shellFolder("Startup"); }
  std::string GetPrograms() { return shellFolder("Programs"); }
  std::string GetAppData() { return shellFolder("AppData"); }
  std::string GetCommonDesktop() { return shellFolder("Common Desktop"); }
  std::string GetCommonStartMenu() { return shellFolder("Common Start Menu"); }
  std::string GetCommonStartup() { return shellFolder("Common Startup"); }
  std::string GetCommonPrograms() { return shellFolder("Common Programs"); }

  platform::Registry& registry() { return registry_; }
  // Makes the next GetRegNodeNext ask again; the listing routines call it before and after.
  void forgetSubKeyLength() { longestSubKeyName_ = 0; }

  std::string g_sGetRegValueMode;

 private:
  std::string shellFolder(std::string_view value);
  // Type and bytes of a value, read until they fit together.
  Status readValue(HKEY hKey, std::string_view name, RegType& type, std::string& data);
  Variant convert(RegType type, std::string data);
  Status firstSubKey(HKEY hKey, std::string& name);
  [[noreturn]] static void raiseError(int number, const std::string& description);

  platform::Registry& registry_;
  platform::SystemInfo& systemInfo_;
  HKEY enumeratedNodesKey_ = 0;
  std::uint32_t longestSubKeyName_ = 0;
};

}  // namespace korvex::foundation
