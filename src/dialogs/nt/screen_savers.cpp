// Names, reading and writing.
#include "dialogs/nt/screen_savers.h"

#include <algorithm>
#include <array>

#include "engine/at_once.h"
#include "engine/same_name.h"
#include "platform/registry.h"

namespace korvex::dialogs {

using foundation::Session;
using platform::ERROR_SUCCESS;
using platform::HKEY_USERS;
using platform::Status;

namespace {

constexpr std::string_view kDesktop = ".DEFAULT\\Control Panel\\Desktop";
constexpr std::string_view kSaver = "SCRNSAVE.EXE";
constexpr std::string_view kDelay = "ScreenSaveTimeOut";
constexpr std::string_view kActive = "ScreenSaveActive";
constexpr const char* kUsualDelay = "900";

struct NameRow {
  std::string_view file;
  const char* name;
};
constexpr std::array kNames{
    NameRow{"LOGON", "Logon Screen Saver"},
    NameRow{"CHANNEL SCREEN SAVER", "Channel Screen Saver"},
    NameRow{"SCRNSAVE", "Default Screen Saver"},
    NameRow{"SS3DFO", "3D Flying Objects"},
    NameRow{"SSBEZIER", "Beziers"},
    NameRow{"SSFLWBOX", "3D FlowerBox"},
    NameRow{"SSMARQUE", "Marquee Display"},
    NameRow{"SSMAZE", "3D Maze"},
    NameRow{"SSMYST", "Mystify"},
    NameRow{"SSPIPES", "3D Pipes"},
    NameRow{"SSSTARS", "Starfield Simulation"},
    NameRow{"SSTEXT3D", "3D Text"},
    NameRow{"BLACK16", "Blank Screen"},
    NameRow{"FLYING WINDOWS", "Flying Windows"},
};

}  // namespace

std::string screenSaverName(std::string_view path) {
  const std::string_view file = path.substr(path.find_last_of("\\/:") + 1);  // npos + 1 is 0
  const std::string_view base = file.substr(0, file.rfind('.'));
  const auto row = std::ranges::find_if(
      kNames, [base](const NameRow& each) { return engine::sameName(each.file, base); });
  return row == kNames.end() ? std::string(base) : row->name;
}

Status readLogonScreenSaver(Session& session, LogonScreenSaver& stored) {
  stored = {};
  std::string active;
  Status status = engine::storedText(session, HKEY_USERS, kDesktop, kSaver, stored.path);
  if (status == ERROR_SUCCESS) {
    status = engine::storedText(session, HKEY_USERS, kDesktop, kDelay, stored.delay);
  }
  if (status == ERROR_SUCCESS) {
    status = engine::storedText(session, HKEY_USERS, kDesktop, kActive, active);
  }
  if (stored.delay.empty()) stored.delay = kUsualDelay;
  stored.active = active != "0";
  return status;
}

std::string findScreenSaver(Session& session, const std::string& path) {
  const std::string file = session.machine().systemInfo().ExpandEnvironmentStringsA(path);
  if (file.empty()) return "";
  if (file.find_first_of("\\/:") != std::string::npos) {
    return session.files().exists(file) ? file : "";
  }
  for (const std::string& folder : {session.g_sWinSysDir, session.g_sWinDir}) {
    if (session.files().exists(folder + file)) return folder + file;
  }
  return "";
}

Status writeScreenSaverPath(Session& session, const std::string& path) {
  return path.empty() ? engine::dropValue(session, HKEY_USERS, kDesktop, kSaver)
                      : engine::putText(session, HKEY_USERS, kDesktop, kSaver, path);
}

Status writeScreenSaverDelay(Session& session, const std::string& seconds) {
  return engine::putText(session, HKEY_USERS, kDesktop, kDelay, seconds);
}

}  // namespace korvex::dialogs
