// What an embedded machine says about itself.
#include "platform/embedded/embedded_system.h"

#include <algorithm>

#include "platform/text/text.h"

namespace korvex::platform {
namespace {

constexpr std::uint32_t kToken = 4;
constexpr std::uint32_t kAdjustPrivileges = 0x20;
constexpr std::string_view kShutdownPrivilege = "SeShutdownPrivilege";
constexpr std::uint64_t kShutdownIdentifier = 19;  // the number that every NT gives it
constexpr Status kNoSuchPrivilege = 1313;
constexpr Status kNotAllAssigned = 1300;

}  // namespace

Status EmbeddedSystemInfo::GetFileVersionInfoA(std::string_view path, FileVersion& version) {
  const auto found = machine_.fileVersions.find(foldName(path));
  if (found == machine_.fileVersions.end()) {
    return FactsSystemInfo::GetFileVersionInfoA(path, version);
  }
  version = found->second;
  return ERROR_SUCCESS;
}

Status EmbeddedRestart::OpenProcessToken(std::uint32_t access, std::uint32_t& token) {
  if (machine_.family == Family::NineX) return ERROR_CALL_NOT_IMPLEMENTED;
  tokenAccess_ = access;
  token = kToken;
  return ERROR_SUCCESS;
}

Status EmbeddedRestart::LookupPrivilegeValueA(std::string_view /*system*/,
                                              std::string_view privilege,
                                              std::uint64_t& identifier) {
  if (machine_.family == Family::NineX) return ERROR_CALL_NOT_IMPLEMENTED;
  if (!sameName(privilege, kShutdownPrivilege)) return kNoSuchPrivilege;
  identifier = kShutdownIdentifier;
  return ERROR_SUCCESS;
}

Status EmbeddedRestart::AdjustTokenPrivileges(std::uint32_t token, std::uint64_t identifier,
                                              std::uint32_t attributes) {
  if (machine_.family == Family::NineX) return ERROR_CALL_NOT_IMPLEMENTED;
  if (token != kToken || tokenAccess_ == 0) return ERROR_INVALID_HANDLE;
  if ((tokenAccess_ & kAdjustPrivileges) == 0) return ERROR_ACCESS_DENIED;
  if (identifier != kShutdownIdentifier || !machine_.administrator) return kNotAllAssigned;
  mayShutDown_ = (attributes & SE_PRIVILEGE_ENABLED) != 0;
  return ERROR_SUCCESS;
}

Status EmbeddedRestart::ExitWindowsEx(std::uint32_t flags, std::uint32_t /*reserved*/) {
  if (machine_.family == Family::Nt && !mayShutDown_) return ERROR_PRIVILEGE_NOT_HELD;
  return events_.add("restart", std::to_string(flags));
}

bool EmbeddedWindows::FindWindowA(std::string_view className, std::string_view windowName) {
  return std::any_of(machine_.openWindows.begin(), machine_.openWindows.end(),
                     [&](const OpenWindow& window) {
                       return sameName(window.className, className) &&
                              (windowName.empty() || sameName(window.title, windowName));
                     });
}

}  // namespace korvex::platform
