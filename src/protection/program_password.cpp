// Keeping, comparing and taking away.
#include "protection/program_password.h"

#include <array>

#include "platform/registry.h"
#include "platform/text/text.h"

namespace korvex::protection {

using platform::HKEY_CLASSES_ROOT;
using platform::Status;

bool ProgramPassword::isSet() {
  const platform::OpenKey key(regTool_.registry(), HKEY_CLASSES_ROOT, kProtectionKey,
                              platform::KEY_QUERY_VALUE);
  if (key.status() == platform::ERROR_FILE_NOT_FOUND) return false;
  if (key.status() != platform::ERROR_SUCCESS) return true;
  platform::RegType type = 0;
  std::uint32_t size = 0;
  return regTool_.registry().RegQueryValueExA(key.get(), kPasswordValue, &type, nullptr, &size) !=
         platform::ERROR_FILE_NOT_FOUND;
}

bool ProgramPassword::matches(std::string_view value, std::string_view folded) {
  const std::string hash = regTool_.GetRegStr(kProtectionKey, value, HKEY_CLASSES_ROOT);
  return !hash.empty() && hash_.matches(hash, folded);
}

ProgramPassword::Match ProgramPassword::check(std::string_view typed) {
  const std::string folded = platform::foldName(typed);
  if (matches(kPasswordValue, folded)) return Match::Password;
  return matches(kResetValue, folded) ? Match::ResetCode : Match::None;
}

Status ProgramPassword::set(std::string_view password, std::string& resetCode) {
  if (password.empty()) return platform::ERROR_INVALID_PARAMETER;
  const std::string code = hash_.randomCode();
  const std::string hash = hash_.of(platform::foldName(password));
  const std::string codeHash = hash_.of(platform::foldName(code));
  if (hash.empty() || codeHash.empty()) return platform::ERROR_NO_SYSTEM_RESOURCES;

  platform::RegistryChange change(regTool_.registry());
  Status status = change.status();
  platform::HKEY key = 0;
  bool existed = false;
  if (status == platform::ERROR_SUCCESS) {
    status = regTool_.CreateRegNode(HKEY_CLASSES_ROOT, kProtectionKey, key, existed,
                                    platform::KEY_ALL_ACCESS);
  }
  if (status != platform::ERROR_SUCCESS) return status;
  status = regTool_.CreateRegValue(hash, key, kPasswordValue);
  if (status == platform::ERROR_SUCCESS) {
    status = regTool_.CreateRegValue(codeHash, key, kResetValue);
  }
  regTool_.registry().RegCloseKey(key);
  if (status == platform::ERROR_SUCCESS) status = change.commit();
  if (status == platform::ERROR_SUCCESS) resetCode = code;
  return status;
}

Status ProgramPassword::clear() {
  platform::RegistryChange change(regTool_.registry());
  if (change.status() != platform::ERROR_SUCCESS) return change.status();
  constexpr std::array kValues{kResetValue, kPasswordValue};
  for (const std::string_view value : kValues) {
    const Status status = regTool_.DeleteRegValue(HKEY_CLASSES_ROOT, kProtectionKey, value);
    if (status != platform::ERROR_SUCCESS && status != platform::ERROR_FILE_NOT_FOUND) {
      return status;
    }
  }
  const Status status = regTool_.DeleteOneRegNode(HKEY_CLASSES_ROOT, kProtectionKey);
  if (status != platform::ERROR_SUCCESS && status != platform::ERROR_FILE_NOT_FOUND) return status;
  return change.commit();
}

}  // namespace korvex::protection
