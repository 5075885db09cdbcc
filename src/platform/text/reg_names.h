// The names of the registry's roots and of keys in full ("HKEY_LOCAL_MACHINE\Software\X").
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/registry.h"

namespace korvex::platform {

enum class ShortRoots { No, Yes };  // whether HKLM, HKCU, HKCR, HKU and HKCC are understood too

// A root of Windows 95, 98 and Me that holds what the running system measures; never stored.
constexpr HKEY HKEY_DYN_DATA = 0x80000006;

// One key in full: root and the path below it, without backslashes at either end.
struct KeyPath {
  HKEY root = 0;
  std::string_view path;
};

// Nothing where the text does not begin with a root's name, whatever its case. One trailing
// backslash is dropped; path is a part of text.
std::optional<KeyPath> parseKeyPath(std::string_view text, ShortRoots shortRoots = ShortRoots::No);

// "HKEY_LOCAL_MACHINE"; empty for a handle that is no predefined root.
std::string_view rootName(HKEY root);
std::string fullKeyName(HKEY root, std::string_view path);

}  // namespace korvex::platform
