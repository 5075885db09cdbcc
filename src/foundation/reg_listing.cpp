// Lists of values and subkeys.
#include "foundation/reg_listing.h"

#include <algorithm>
#include <array>

#include "foundation/session.h"

namespace korvex::foundation {

using namespace platform;

std::string P_EnumRegValues(Session& session, HKEY hKeyRoot, std::string_view SubKey,
                            AccessMask Access, bool WantNodes, bool WithData) {
  GRegTool& tool = session.regTool;
  OpenKey key(tool.registry(), hKeyRoot, SubKey, Access);
  if (key.status() != ERROR_SUCCESS) return {};
  std::string list;
  Status status = ERROR_SUCCESS;
  tool.forgetSubKeyLength();
  for (std::uint32_t index = 0; status == ERROR_SUCCESS; ++index) {
    std::string name;
    Variant value;
    RegType type = REG_NONE;
    status = WantNodes ? tool.GetRegNodeNext(key.get(), index, name, false)
                       : tool.GetRegValueNext(key.get(), index, name, value, type, false);
    if (status != ERROR_SUCCESS) break;
    list += name;
    if (WithData && !WantNodes) list += '=' + variantText(value);
    list += '\0';
  }
  tool.forgetSubKeyLength();
  if (status != ERROR_NO_MORE_ITEMS) session.trace.dump("[P_EnumRegValues]: lRetVal&", status);
  if (!list.empty()) list += '\0';
  return list;
}

bool P_DoesRegValueExsist(Session& session, HKEY hKeyRoot, std::string_view SubKey,
                          AccessMask Access, std::string_view ValueName) {
  // The same answer as going through the list of names, but by the registry's own folding of case,
  // which knows more than the letters of English.
  OpenKey key(session.registry(), hKeyRoot, SubKey, Access);
  if (key.status() != ERROR_SUCCESS) return false;
  std::uint32_t size = 0;
  const Status status =
      session.registry().RegQueryValueExA(key.get(), ValueName, nullptr, nullptr, &size);
  return status == ERROR_SUCCESS || status == ERROR_MORE_DATA;
}

std::string P_EnumRegKeysFaster(Session& session, HKEY hKeyRoot, std::string_view SubKey) {
  Registry& registry = session.registry();
  OpenKey key(registry, hKeyRoot, SubKey, KEY_ENUMERATE_SUB_KEYS);
  if (key.status() != ERROR_SUCCESS) return {};
  std::string list;
  std::array<char, kNameBufferBytes> name{};
  for (std::uint32_t index = 0;; ++index) {
    auto length = static_cast<std::uint32_t>(name.size());
    const Status status = registry.RegEnumKeyExA(key.get(), index, name.data(), &length);
    if (status != ERROR_SUCCESS) {
      if (status != ERROR_NO_MORE_ITEMS) {
        session.trace.dump("[P_EnumRegKeysFaster]: lRetVal&", status);
      }
      return list;
    }
    if (length == 0) continue;
    list.append(name.data(), length);
    list += '\0';
  }
}

std::vector<std::string> splitList(std::string_view list) {
  std::vector<std::string> names;
  while (!list.empty()) {
    const std::string_view name = list.substr(0, list.find('\0'));
    if (!name.empty()) names.emplace_back(name);
    list.remove_prefix(std::min(name.size() + 1, list.size()));
  }
  return names;
}

}  // namespace korvex::foundation
