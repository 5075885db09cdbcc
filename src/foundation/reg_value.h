// One value of one key in one call.
#pragma once

#include <string_view>

#include "foundation/greg_tool.h"
#include "foundation/variant.h"

namespace korvex::foundation {

class Session;

// Writes one value; with bCreate a missing key is made. The result is an error flag: TRUE MEANS
// FAILURE. status, where given, receives the Win32 status of the step that failed, or 0.
bool P_WriteRegValue(Session& session, HKEY hKeyRoot, std::string_view sSubKey,
                     std::string_view sValueName, const Variant& vValue, AccessMask lAccess,
                     bool bCreate, Status* status = nullptr);

// The value in its string form, or as it is with bRaw. bMissing tells that the key could not be
// opened (the result is then empty); a missing value of a key that is there reads as GetRegValue
// tells it.
Variant P_ReadRegValue(Session& session, HKEY hRoot, std::string_view sPath, std::string_view sName,
                       bool& bMissing, bool bRaw = false);

}  // namespace korvex::foundation
