// What a machine has beyond its Windows.
#include "engine/conditions.h"

#include <array>
#include <string>
#include <tuple>

#include "engine/same_name.h"
#include "foundation/fix_path.h"

namespace korvex::engine {

using foundation::Session;

namespace {

constexpr std::string_view kAppPaths = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";

// The browser that App Paths names; nothing but zeros where there is none.
platform::FileVersion explorerVersion(Session& session) {
  platform::FileVersion version;
  platform::SystemInfo& system = session.machine().systemInfo();
  const std::string file = foundation::P_FixPathGen(
      session.trace, system.ExpandEnvironmentStringsA(session.regTool.GetRegStr(
                         std::string(kAppPaths) + "IEXPLORE.EXE", "", HKLM)));
  if (file.empty() || system.GetFileVersionInfoA(file, version) != platform::ERROR_SUCCESS) {
    return {};
  }
  return version;
}

bool isFileSystem(Session& session, std::string_view prefix) {
  const std::string there = session.machine().systemInfo().fileSystemOf(session.g_sRoot);
  return there.empty() || sameName(std::string_view(there).substr(0, prefix.size()), prefix);
}

}  // namespace

std::string_view needsExplorer4SP2(const Tweak&, Session& session) {
  const platform::FileVersion version = explorerVersion(session);
  const auto isLater = std::tuple(version.major, version.minor, version.build, version.revision) >=
                       std::tuple(4, 72, 3110, 3);
  return isLater ? "" : "Needs Internet Explorer 4.01 SP2 or later.";
}

std::string_view needsExplorer4(const Tweak&, Session& session) {
  return session.g_iExplrVer >= 4 ? "" : "Needs Internet Explorer 4 or later.";
}

std::string_view needsExplorer5(const Tweak&, Session& session) {
  return session.g_iExplrVer >= 5 ? "" : "Needs Internet Explorer 5 or later.";
}

std::string_view needsNtfs(const Tweak&, Session& session) {
  return isFileSystem(session, "NTFS") ? "" : "Windows is not on an NTFS drive.";
}

std::string_view needsFat(const Tweak&, Session& session) {
  return isFileSystem(session, "FAT") ? "" : "Windows is not on a FAT drive.";
}

std::string_view needsOutlook(const Tweak&, Session& session) {
  const std::string folder =
      session.regTool.GetRegStr(std::string(kAppPaths) + "OUTLOOK.EXE", "Path", HKLM);
  return folder.empty() ? "Microsoft Outlook is not installed." : "";
}

std::string_view needsMsGina(const Tweak&, Session& session) {
  return session.files().exists(session.g_sWinSysDir + "msgina.dll")
             ? ""
             : "Needs the logon dialog of Windows (msgina.dll).";
}

}  // namespace korvex::engine
