// Which values and which subkeys are there, in one call.
//
// Lists are texts with a Chr(0) after each name, as the product hands them on; splitList makes
// them a vector.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "foundation/greg_tool.h"

namespace korvex::foundation {

class Session;

// Value names, or with WantNodes subkey names; with WithData "name=data". "" for an empty or a
// missing key; else each name followed by Chr(0) and one more Chr(0) at the end.
std::string P_EnumRegValues(Session& session, HKEY hKeyRoot, std::string_view SubKey,
                            AccessMask Access, bool WantNodes, bool WithData);
// True where the key has a value of that name, case ignored, whatever it holds.
bool P_DoesRegValueExsist(Session& session, HKEY hKeyRoot, std::string_view SubKey,
                          AccessMask Access, std::string_view ValueName);
// Subkey names without asking the key for its longest one: each followed by Chr(0), "" for none.
std::string P_EnumRegKeysFaster(Session& session, HKEY hKeyRoot, std::string_view SubKey);

// The non-empty names of a list.
std::vector<std::string> splitList(std::string_view list);

}  // namespace korvex::foundation
