// What a machine says about itself.
#include "platform/common/facts_system_info.h"

#include <fmt/format.h>

#include "platform/common/version_resource.h"
#include "platform/text/text.h"

namespace korvex::platform {
namespace {

constexpr std::uint32_t kNineXBit = 0x80000000;

}  // namespace

std::string versionText(const MachineFacts& facts) {
  const VersionInfo& version = facts.version;
  return fmt::format("{}.{}.{}", version.majorVersion, version.minorVersion, version.buildNumber);
}

std::uint32_t FactsSystemInfo::GetVersion() {
  const VersionInfo& version = facts_.version;
  const std::uint32_t low = version.majorVersion | version.minorVersion << 8;
  const bool nt = facts_.family == Family::Nt;
  return low | (nt ? version.buildNumber << 16 : kNineXBit);
}

Status FactsSystemInfo::GetVersionExA(VersionInfo& info) {
  info = facts_.version;
  if (facts_.family == Family::NineX) {
    // There the upper half of the build number repeats the version.
    info.buildNumber |= info.majorVersion << 24 | info.minorVersion << 16;
  }
  return ERROR_SUCCESS;
}

std::string FactsSystemInfo::GetTempPathA() {
  const bool ends = facts_.tempFolder.back() == '\\';
  return ends ? facts_.tempFolder : facts_.tempFolder + '\\';
}

std::string FactsSystemInfo::ExpandEnvironmentStringsA(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t start = text.find('%');
    const std::size_t end = start == std::string_view::npos ? start : text.find('%', start + 1);
    if (end == std::string_view::npos) break;
    const auto found = facts_.environment.find(foldName(text.substr(start + 1, end - start - 1)));
    result += text.substr(0, start);
    if (found != facts_.environment.end()) {
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

std::string FactsSystemInfo::fileSystemOf(std::string_view drive) {
  const auto found = facts_.fileSystems.find(foldName(drive.substr(0, 1)));
  return found == facts_.fileSystems.end() ? std::string() : found->second;
}

Status FactsSystemInfo::GetFileVersionInfoA(std::string_view path, FileVersion& version) {
  std::string bytes;
  const Status status = files_.read(path, bytes);
  return status == ERROR_SUCCESS ? readVersionResource(bytes, version) : status;
}

}  // namespace korvex::platform
