// Windows NT and 2000 log on by themselves; on Windows 95, 98 and Me Tweak UI does it.
#include "dialogs/logon/auto_logon.h"

#include "engine/at_once.h"

namespace korvex::dialogs {
namespace {

using foundation::Session;
using platform::HKEY_LOCAL_MACHINE;
using platform::Status;

constexpr std::string_view kWinlogonNt =
    "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
constexpr std::string_view kWinlogon9x = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Winlogon";
constexpr std::string_view kRunServices =
    "Software\\Microsoft\\Windows\\CurrentVersion\\RunServices";
constexpr std::string_view kTweakUi = "Tweak UI";
constexpr std::string_view kTweakUiLogon = "RUNDLL32.EXE TWEAKUI.CPL,TweakLogon";
constexpr std::string_view kAutoAdminLogon = "AutoAdminLogon";
constexpr std::string_view kDefaultUserName = "DefaultUserName";
constexpr std::string_view kDefaultPassword = "DefaultPassword";
constexpr std::string_view kOn = "1";

std::string_view winlogon(const Session& session) {
  return session.g_bNT ? kWinlogonNt : kWinlogon9x;
}

std::string stored(Session& session, std::string_view name) {
  return session.regTool.GetRegStr(winlogon(session), name, HKEY_LOCAL_MACHINE);
}

Status putAll(Session& session, std::string_view on, const std::string& userName,
              const std::string& password) {
  const auto put = [&session](std::string_view name, const std::string& text) {
    return engine::putText(session, HKEY_LOCAL_MACHINE, winlogon(session), name, text);
  };
  Status status = put(kAutoAdminLogon, std::string(on));
  if (status == platform::ERROR_SUCCESS) status = put(kDefaultUserName, userName);
  if (status == platform::ERROR_SUCCESS) status = put(kDefaultPassword, password);
  return status;
}

std::vector<std::string> obstaclesOnNt(const AutoLogon& logon, Session& session) {
  std::vector<std::string> found;
  if (logon.on && logon.password.empty()) {
    found.emplace_back("Windows switches it off by itself where the password is empty.");
  }
  if (stored(session, "DontDisplayLastUserName") == kOn) {
    found.emplace_back("Windows is told not to show the last user name, and asks for one.");
  }
  if (!stored(session, "LegalNoticeCaption").empty() ||
      !stored(session, "LegalNoticeText").empty()) {
    found.emplace_back("The message before logon waits to be answered first.");
  }
  return found;
}

std::vector<std::string> obstaclesOn9x(const AutoLogon& logon, Session& session) {
  std::vector<std::string> found;
  if (!session.files().exists(session.g_sWinSysDir + "TWEAKUI.CPL")) {
    found.emplace_back("Tweak UI (TWEAKUI.CPL), which logs on, is not installed.");
  }
  if (logon.on && session.regTool.GetRegStr(kRunServices, kTweakUi, HKEY_LOCAL_MACHINE).empty()) {
    found.emplace_back("Nothing starts Tweak UI's logon; Apply writes that too.");
  }
  return found;
}

}  // namespace

Status readAutoLogon(Session& session, AutoLogon& logon) {
  const auto read = [&session](std::string_view name, std::string& text) {
    return engine::storedText(session, HKEY_LOCAL_MACHINE, winlogon(session), name, text);
  };
  std::string on;
  Status status = read(kAutoAdminLogon, on);
  if (status == platform::ERROR_SUCCESS) status = read(kDefaultUserName, logon.userName);
  if (status == platform::ERROR_SUCCESS) status = read(kDefaultPassword, logon.password);
  logon.on = on == kOn;
  return status;
}

std::vector<std::string> obstaclesTo(const AutoLogon& logon, Session& session) {
  return session.g_bNT ? obstaclesOnNt(logon, session) : obstaclesOn9x(logon, session);
}

bool enableAutoLogon(Session& session, const std::string& userName, const std::string& password) {
  return engine::changeAtOnce(session, "Automatic logon", [&] {
    const Status status = putAll(session, kOn, userName, password);
    if (status != platform::ERROR_SUCCESS || session.g_bNT) return status;
    return engine::putText(session, HKEY_LOCAL_MACHINE, kRunServices, kTweakUi,
                           std::string(kTweakUiLogon));
  });
}

bool P_DisableAutoLogon(Session& session) {
  session.trace.enter("[P_DisableAutoLogon]");
  return engine::changeAtOnce(session, "Automatic logon", [&] {
    const Status status = putAll(session, "", "", "");
    if (status != platform::ERROR_SUCCESS || session.g_bNT) return status;
    return engine::dropValue(session, HKEY_LOCAL_MACHINE, kRunServices, kTweakUi);
  });
}

}  // namespace korvex::dialogs
