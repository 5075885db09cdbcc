// Session: what one run of Korvex shares. The machine and the person in front of it, the trace, the
// registry tool, the facts that detection found, and the flags.
//
// Facts and flags are public under the product's own names. Detection (detection.h) fills the
// facts once; a session never writes to the machine by itself.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/greg_tool.h"
#include "foundation/log_worker.h"
#include "foundation/profile_folders.h"
#include "foundation/trace.h"
#include "platform/machine.h"
#include "platform/prompts.h"

namespace korvex::foundation {

constexpr std::string_view kAppTitle = "Korvex";
constexpr std::string_view kCrLf = "\r\n";

enum class Os { Unknown, Windows95, Windows98, WindowsMe, WindowsNT4, Windows2000 };
std::string_view osName(Os os);  // "Windows Millennium"

// Which settings of the Jet database engine are meant, as long as frmOffice is open; without it
// what that window remembered is meant (engine/jet.h).
struct JetChoice {
  std::optional<bool> global;  // all programs of the machine, or Access alone
  std::string engine;          // "JET 4.0"; "" for what was remembered
  // Why something of what the registry says of it could not be read; the first such status.
  std::int32_t unreadable = 0;
};

class Session {
 public:
  Session(platform::Machine& machine, platform::Prompts& prompts);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  platform::Machine& machine() { return machine_; }
  platform::Prompts& prompts() { return prompts_; }
  platform::Registry& registry() { return machine_.registry(); }
  platform::Files& files() { return machine_.files(); }

  // Asks for the end of the program: after a fatal error, or where the person chose not to go on.
  // Nothing is thrown; the program's main loop closes the main window and leaves.
  void requestEnd();
  bool endRequested() const { return endRequested_; }
  std::function<void()> onEndRequested;  // called once, by the first request

  TraceText trace;
  GRegTool regTool;
  LogWorker logWorker;

  // Facts. Folders of Windows end in a backslash ("C:\WINNT\", "C:\WINNT\system32\", "C:\");
  // g_sAppPath does not ("C:\Program Files\Korvex").
  platform::VersionInfo g_verInfo;
  std::string g_sWinDir;
  std::string g_sWinSysDir;
  std::string g_sRoot;
  std::string g_sAppPath;
  bool g_bNT = false;
  Os g_eOS = Os::Unknown;
  std::string g_sOSName;
  bool g_bServer = false;
  bool g_bProfile = false;
  std::string g_sCurrentUser;
  std::string g_sExt;            // ".bat" or ".cmd"
  std::int16_t g_iExplrVer = 0;  // Internet Explorer's major version, 0 for none
  std::string g_sShellVersion;   // file version of Shdocvw.dll
  std::string g_sPhoneBookPath;  // of dial-up connections; "" where Windows keeps none
  ProfileFolders pd;
  std::int16_t g_iOfficeVer = 0;      // 8 for Office 97, 9 for Office 2000, 0 for any other or none
  std::string g_sOfficePath;          // of HKEY_CURRENT_USER: "Software\\Microsoft\\Office\\9.0"
  std::int16_t g_iOfficeLastTab = 1;  // the group of frmOffice that was shown last, from 1
  JetChoice jet;

  // The same text for as long as the session lives: for views in rows and tables.
  std::string_view lasting(std::string text) { return *texts_.insert(std::move(text)).first; }

  // Flags.
  bool g_bNoRecord = false;
  bool g_bReverting = false;
  bool g_bDefaulting = false;
  bool g_bRebootNeeded = false;
  std::int32_t g_lNewKey = 0;
  std::string g_sLogin;  // what came of asking for the program's password: "TRUE", "CANCEL", "OFF"

  // The program's own options.
  bool g_bNoShowReboot = false;
  bool g_bNoShowConfirmation = false;
  bool g_bNoSaveTab = false;
  bool g_bNoSaveWindPos = false;
  bool g_bClearRUNReboot = false;
  bool g_bClearMRUsReboot = false;
  bool g_bClearDOCSReboot = false;
  bool g_bClearIEURLListReboot = false;
  bool g_bTraceLog = false;

 private:
  platform::Machine& machine_;
  platform::Prompts& prompts_;
  bool endRequested_ = false;
  std::set<std::string, std::less<>> texts_;
};

}  // namespace korvex::foundation
