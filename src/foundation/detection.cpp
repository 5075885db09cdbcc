// Which Windows, where it lies, whose it is.
#include "foundation/detection.h"

#include <fmt/format.h>

#include <array>
#include <utility>

#include "foundation/runtime_error.h"

namespace korvex::foundation {
namespace {

using namespace platform;

constexpr std::string_view kProgramFolder = R"(Program Files\Korvex)";
constexpr std::string_view kProfileReconciliation =
    R"(Software\Microsoft\Windows\CurrentVersion\ProfileReconciliation)";
constexpr std::string_view kProductOptions = R"(SYSTEM\CurrentControlSet\Control\ProductOptions)";

std::string asFolder(std::string path) {
  if (!path.empty() && !path.ends_with('\\')) path += '\\';
  return path;
}

std::string upperCase(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

// The minor version keeps two digits: "4.10" is not "4.1", and 4.1 would be "4.01".
std::string versionStart(unsigned major, unsigned minor) {
  return fmt::format("{}.{:02}", major, minor);
}

std::string kernelVersion(Session& session) {
  std::string version = GetFileVersion(session, session.g_sWinSysDir + "Kernel32.dll");
  // A machine whose Kernel32.dll tells nothing still knows what it is.
  if (!version.empty()) return version;
  return versionStart(session.g_verInfo.majorVersion, session.g_verInfo.minorVersion);
}

Os osOf(std::uint32_t platformId, std::string_view version) {
  const auto holds = [version](std::string_view part) {
    return version.find(part) != std::string_view::npos;
  };
  if (platformId == VER_PLATFORM_WIN32_NT) return holds("5.0") ? Os::Windows2000 : Os::WindowsNT4;
  if (platformId != VER_PLATFORM_WIN32_WINDOWS) return Os::Unknown;
  if (holds("4.9")) return Os::WindowsMe;
  return holds("4.1") ? Os::Windows98 : Os::Windows95;
}

}  // namespace

void P_DetermineSystemPaths(Session& session) {
  SystemInfo& info = session.machine().systemInfo();
  session.g_sWinDir = asFolder(info.GetWindowsDirectoryA());
  session.g_sWinSysDir = asFolder(info.GetSystemDirectoryA());
  session.g_sRoot = asFolder(session.g_sWinDir.substr(0, 2));
  session.g_sAppPath = session.g_sRoot + std::string(kProgramFolder);
  session.trace.enter("[P_DetermineSystemPaths]");
  session.trace.dump("g_sWinDir$", session.g_sWinDir);
  session.trace.dump("g_sWinSysDir$", session.g_sWinSysDir);
  session.trace.dump("g_sRoot$", session.g_sRoot);
  session.trace.dump("g_sAppPath$", session.g_sAppPath);
}

void P_GetOSPlatform(Session& session) {
  session.trace.enter("[P_GetOSPlatform]");
  const Status status = session.machine().systemInfo().GetVersionExA(session.g_verInfo);
  if (status != ERROR_SUCCESS) {
    session.trace.dump("lRetVal&", status);
    throw RuntimeError(kErrorApplication, "Failure determing OS.", "P_GetOSPlatform");
  }
  session.g_bNT = session.g_verInfo.platformId == VER_PLATFORM_WIN32_NT;
  session.trace.dump("g_bNT", session.g_bNT);
  P_DetermineBuildNumber(session);
}

void P_DetermineBuildNumber(Session& session) {
  const std::string version = kernelVersion(session).substr(0, 3);
  session.g_eOS = osOf(session.g_verInfo.platformId, version);
  session.g_sOSName = osName(session.g_eOS);
  if (session.g_bNT) {
    const std::string product =
        upperCase(session.regTool.GetRegStr(kProductOptions, "ProductType", HKEY_LOCAL_MACHINE));
    session.g_bServer = product == "SERVERNT" || product == "LANMANNT";
  }
  session.trace.enter("[P_DetermineBuildNumber]");
  session.trace.dump("s$", session.g_sOSName);
}

void p_SetBatchExtension(Session& session) {
  session.g_sExt = session.g_bNT ? ".cmd" : ".bat";
  session.trace.enter("[p_SetBatchExtension]");
  session.trace.dump("g_sExt$", session.g_sExt);
}

std::string GetFileVersion(Session& session, std::string_view sFile) {
  session.trace.dump("[GetFileVersion]: sFile$", sFile);
  FileVersion version;
  const Status status = session.machine().systemInfo().GetFileVersionInfoA(sFile, version);
  if (status != ERROR_SUCCESS) return {};
  static constexpr auto kWords = std::to_array<std::pair<std::uint32_t, std::string_view>>({
      {VS_FF_DEBUG, "Debug "},
      {VS_FF_PRERELEASE, "PreRel "},
      {VS_FF_PATCHED, "Patched "},
      {VS_FF_PRIVATEBUILD, "Private "},
      {VS_FF_INFOINFERRED, "Info "},
      {VS_FF_SPECIALBUILD, "Special "},
  });
  std::string words;
  for (const auto& [flag, word] : kWords) {
    if ((version.flags & flag) != 0) words += word;
  }
  return fmt::format("{}.{}.{}{}{}", versionStart(version.major, version.minor), version.build,
                     version.revision, words.empty() ? "" : " ", words);
}

void P_DetermineProfiles(Session& session) {
  const bool reconciled =
      !session.regTool.GetRegStr(kProfileReconciliation, "ProfileDirectory", HKEY_CURRENT_USER)
           .empty();
  // NT keeps a profile for every user and has no such value.
  session.g_bProfile = reconciled || session.g_bNT;
  session.g_sCurrentUser = session.machine().systemInfo().GetUserNameA();
  if (session.g_sCurrentUser.empty()) {
    // Where 95, 98 and Me keep the name given at the logon box, profiles or not.
    session.g_sCurrentUser = session.regTool.GetRegStr(R"(System\CurrentControlSet\Control)",
                                                       "Current User", HKEY_LOCAL_MACHINE);
  }
  session.trace.enter("[P_DetermineProfiles]");
  session.trace.dump("g_bProfile", session.g_bProfile);
  session.trace.dump("g_sCurrentUser$", session.g_sCurrentUser);
}

void P_DetermineProfileDirInfo(Session& session) {
  session.pd.PreProfilePath = session.g_eOS == Os::Windows2000
                                  ? session.g_sRoot + "Documents and Settings\\"
                                  : session.g_sWinDir + "Profiles\\";
  session.trace.enter("[P_DetermineProfileDirInfo]");
  session.trace.dump("pd.PreProfilePath", session.pd.PreProfilePath);
}

RegisteredTo P_ID(Session& session) {
  const std::string_view windows = session.g_bNT ? R"(Software\Microsoft\Windows NT\CurrentVersion)"
                                                 : R"(Software\Microsoft\Windows\CurrentVersion)";
  constexpr std::string_view kSetup = R"(Software\Microsoft\MS Setup (ACME)\User Info)";
  const auto read = [&](std::string_view name, std::string_view setupName) {
    std::string text = session.regTool.GetRegStr(windows, name, HKEY_LOCAL_MACHINE);
    return text.empty() ? session.regTool.GetRegStr(kSetup, setupName, HKEY_CURRENT_USER) : text;
  };
  RegisteredTo id{read("RegisteredOwner", "DefName"), read("RegisteredOrganization", "DefCompany")};
  session.trace.enter("[P_ID]");
  session.trace.dump("sSubKey$", windows);
  return id;
}

void p_DetermineOfficeRegPath(Session& session) {
  session.g_iOfficeVer = 0;
  session.g_sOfficePath.clear();
  for (const std::int16_t version : {9, 8}) {
    const std::string path = fmt::format("Software\\Microsoft\\Office\\{}.0", version);
    const OpenKey key(session.registry(), HKEY_CURRENT_USER, path, KEY_QUERY_VALUE);
    if (key.status() != ERROR_SUCCESS) continue;
    session.g_iOfficeVer = version;
    session.g_sOfficePath = path;
    break;
  }
  session.trace.enter("[p_DetermineOfficeRegPath]");
  session.trace.dump("g_iOfficeVer%", session.g_iOfficeVer);
}

void detectSystem(Session& session) {
  P_DetermineSystemPaths(session);
  P_GetOSPlatform(session);
  p_SetBatchExtension(session);
  P_DetermineProfiles(session);
  P_DetermineProfileDirInfo(session);
  initializeProfileFolders(session);
  p_DetermineOfficeRegPath(session);
}

}  // namespace korvex::foundation
