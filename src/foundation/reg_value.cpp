// Writing and reading one value.
#include "foundation/reg_value.h"

#include "foundation/session.h"

namespace korvex::foundation {

using namespace platform;

bool P_WriteRegValue(Session& session, HKEY hKeyRoot, std::string_view sSubKey,
                     std::string_view sValueName, const Variant& vValue, AccessMask lAccess,
                     bool bCreate, Status* status) {
  HKEY hKey = 0;
  Status lRetVal = session.registry().RegOpenKeyExA(hKeyRoot, sSubKey, lAccess, hKey);
  if (lRetVal == ERROR_FILE_NOT_FOUND && bCreate) {
    bool existed = false;
    lRetVal = session.regTool.CreateRegNode(hKeyRoot, sSubKey, hKey, existed, KEY_ALL_ACCESS);
  }
  if (lRetVal == ERROR_SUCCESS) {
    lRetVal = session.regTool.CreateRegValue(vValue, hKey, sValueName);
    session.registry().RegCloseKey(hKey);
  }
  session.trace.dump("[P_WriteRegValue]: sValueName$", sValueName);
  session.trace.dump("lRetVal&", lRetVal);
  if (status != nullptr) *status = lRetVal;
  return lRetVal != ERROR_SUCCESS;
}

Variant P_ReadRegValue(Session& session, HKEY hRoot, std::string_view sPath, std::string_view sName,
                       bool& bMissing, bool bRaw) {
  OpenKey key(session.registry(), hRoot, sPath, KEY_QUERY_VALUE);
  bMissing = key.status() != ERROR_SUCCESS;
  if (bMissing) return {};
  Variant value = session.regTool.GetRegValue(key.get(), sName);
  return bRaw ? value : Variant(variantText(value));
}

}  // namespace korvex::foundation
