// What an embedded machine says about itself.
#include "platform/embedded/embedded_system.h"

#include <algorithm>

#include "platform/common/text.h"

namespace korvex::platform {
namespace {

constexpr std::uint32_t kNineXBit = 0x80000000;
constexpr std::uint32_t kToken = 4;
constexpr std::uint32_t kAdjustPrivileges = 0x20;
constexpr std::string_view kShutdownPrivilege = "SeShutdownPrivilege";
constexpr std::uint64_t kShutdownIdentifier = 19;  // the number that every NT gives it
constexpr Status kNoSuchPrivilege = 1313;
constexpr Status kNotAllAssigned = 1300;

}  // namespace

std::uint32_t EmbeddedSystemInfo::GetVersion() {
  const VersionInfo& version = machine_.version;
  const std::uint32_t low = version.majorVersion | version.minorVersion << 8;
  const bool nt = machine_.family == Family::Nt;
  return low | (nt ? version.buildNumber << 16 : kNineXBit);
}

Status EmbeddedSystemInfo::GetVersionExA(VersionInfo& info) {
  info = machine_.version;
  if (machine_.family == Family::NineX) {
    // There the upper half of the build number repeats the version.
    info.buildNumber |= info.majorVersion << 24 | info.minorVersion << 16;
  }
  return ERROR_SUCCESS;
}

std::string EmbeddedSystemInfo::GetTempPathA() {
  const bool ends = machine_.tempFolder.back() == '\\';
  return ends ? machine_.tempFolder : machine_.tempFolder + '\\';
}

std::string EmbeddedSystemInfo::ExpandEnvironmentStringsA(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t start = text.find('%');
    const std::size_t end = start == std::string_view::npos ? start : text.find('%', start + 1);
    if (end == std::string_view::npos) break;
    const auto found = machine_.environment.find(foldName(text.substr(start + 1, end - start - 1)));
    result += text.substr(0, start);
    if (found != machine_.environment.end()) {
      result += found->second;
      text.remove_prefix(end + 1);
    } else {
      // The second sign may begin the next name.
      result += text.substr(start, end - start);
      text.remove_prefix(end);
    }
  }
  return result.append(text);
}

std::string EmbeddedSystemInfo::fileSystemOf(std::string_view drive) {
  const auto found = machine_.fileSystems.find(foldName(drive.substr(0, 1)));
  return found == machine_.fileSystems.end() ? std::string() : found->second;
}

Status EmbeddedSystemInfo::GetFileVersionInfoA(std::string_view path, FileVersion& version) {
  const auto found = machine_.fileVersions.find(foldName(path));
  if (found != machine_.fileVersions.end()) {
    version = found->second;
    return ERROR_SUCCESS;
  }
  std::uint32_t attributes = 0;
  const Status status = files_.attributes(path, attributes);
  return status == ERROR_SUCCESS ? ERROR_INVALID_DATA : status;
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
