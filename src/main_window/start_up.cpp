// The steps of start-up.
#include "main_window/start_up.h"

#include <fmt/format.h>

#include <array>
#include <cstdlib>
#include <utility>

#include "foundation/detection.h"
#include "foundation/error_handler.h"
#include "foundation/fix_path.h"
#include "foundation/reg_value.h"
#include "main_window/options.h"

namespace korvex::main_window {
namespace {

using foundation::Session;
using namespace platform;

constexpr std::string_view kAppPaths = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";
constexpr std::array<std::string_view, 2> kRunKeys{"SOFTWARE\\Korvex\\CurrentSettings",
                                                   "SOFTWARE\\Korvex\\LoadValues"};

// The registration of the profile file type: below HKEY_CLASSES_ROOT, default values.
struct FileTypeRow {
  std::string_view key;
  std::string_view text;
};
constexpr std::array kFileType{
    FileTypeRow{".kvx", "kvx_auto_file"},
    FileTypeRow{"kvx_auto_file", "Korvex File"},
    FileTypeRow{"kvx_auto_file\\shell\\open\\command", "korvex.exe %1"},
    FileTypeRow{"kvx_auto_file\\DefaultIcon", "korvex.exe, 0"},
};

void refuse(Session& session, const std::string& text) {
  session.prompts().messageBox(text, kButtonsOk | kIconCritical, foundation::kAppTitle);
}

void createKey(Session& session, std::string_view path) {
  HKEY key = 0;
  bool existed = false;
  const Status status =
      session.regTool.CreateRegNode(HKEY_LOCAL_MACHINE, path, key, existed, KEY_ALL_ACCESS);
  session.trace.dump("lRetVal&", status);
  if (status == ERROR_SUCCESS) session.registry().RegCloseKey(key);
}

void findShellVersion(Session& session) {
  session.g_sShellVersion =
      foundation::GetFileVersion(session, session.g_sWinSysDir + "Shdocvw.dll");
  session.trace.dump("g_sShellVersion$", session.g_sShellVersion);
}

void findExplorerVersion(Session& session) {
  const std::string stored =
      session.regTool.GetRegStr(std::string(kAppPaths) + "IEXPLORE.EXE", "", HKEY_LOCAL_MACHINE);
  const std::string file = foundation::P_FixPathGen(
      session.trace, session.machine().systemInfo().ExpandEnvironmentStringsA(stored));
  const std::string version = file.empty() ? "" : foundation::GetFileVersion(session, file);
  session.g_iExplrVer = static_cast<std::int16_t>(std::atoi(version.c_str()));
  session.trace.dump("g_iExplrVer%", session.g_iExplrVer);
}

}  // namespace

void detectReadOnly(Session& session) {
  foundation::detectSystem(session);
  findExplorerVersion(session);
  findShellVersion(session);
}

std::string runLogPath(const Session& session) {
  return session.g_sAppPath.empty() ? "" : session.g_sAppPath + "\\kvxlog.log";
}

StartUp::StartUp(Session& session, engine::PendingChanges& pending, StartOptions options)
    : session_(session), pending_(pending), options_(options) {}

StartResult StartUp::prepare() {
  // Both only look: what the log and the keys of another instance are is needed from here on.
  foundation::P_DetermineSystemPaths(session_);
  claim_ = session_.machine().claimInstance(Wait::No);

  p_LogHouseWork();
  if (!p_CheckLocalInstance()) return StartResult::SecondInstance;

  const auto detected = foundation::guarded(
      session_, "P_GetOSPlatform", [this] { foundation::P_GetOSPlatform(session_); },
      foundation::Fatal::Yes);
  if (detected == foundation::AfterError::EndProgram) return StartResult::Failed;
  foundation::p_SetBatchExtension(session_);
  if (!p_DetermineRights()) return StartResult::NoRights;

  findShellVersion(session_);
  foundation::P_DetermineProfiles(session_);
  foundation::P_DetermineProfileDirInfo(session_);
  foundation::p_InitializeProfileDirInfo(session_);
  foundation::p_DetermineOfficeRegPath(session_);
  P_CheckPFIAssociation();
  readOptions(session_);
  return StartResult::Started;
}

void StartUp::p_LogHouseWork() {
  session_.trace.enter("[p_LogHouseWork]");
  findExplorerVersion(session_);
  // The keys belong to the instance that holds the claim: a second one must not clear them.
  if (!claim_) return;
  session_.logWorker.boundRunLog(runLogPath(session_));
  RegistryChange change(session_.registry());
  pending_.p_DestroyUserPrefSubKeys();  // what a run that crashed left behind
  for (const std::string_view key : kRunKeys) createKey(session_, key);
  pending_.p_FillLoadValues();
  session_.trace.dump("lRetVal&", change.commit());
}

bool StartUp::p_CheckLocalInstance() {
  session_.trace.enter(options_.doubleLoadWarning
                           ? "[p_CheckLocalInstance]: DOUBLE_LOAD_WARNING"
                           : "[p_CheckLocalInstance]: NO_DOUBLE_LOAD_WARNING");
  if (claim_) return true;
  if (options_.doubleLoadWarning) {
    refuse(session_,
           "Only a single instance of Korvex...for Power Users may be run at any one time.");
  }
  return false;
}

bool StartUp::p_DetermineRights() {
  session_.trace.enter("[p_DetermineRights]");
  SystemInfo& system = session_.machine().systemInfo();
  if (!session_.g_bNT || system.isAdministrator()) return true;
  refuse(session_, system.GetUserNameA() +
                       " does not have sufficent user rights to run this program. Administrator "
                       "rights are required.");
  return false;
}

void StartUp::P_CheckPFIAssociation() {
  session_.trace.enter("[P_CheckPFIAssociation]");
  RegistryChange change(session_.registry());
  for (const FileTypeRow& row : kFileType) {
    // Opening the program must not count as a change of the machine where nothing changes.
    if (session_.regTool.GetRegStr(row.key, "", HKEY_CLASSES_ROOT) == row.text) continue;
    Status status = ERROR_SUCCESS;
    foundation::P_WriteRegValue(session_, HKEY_CLASSES_ROOT, row.key, "", row.text, KEY_ALL_ACCESS,
                                true, &status);
    session_.trace.dump("lRetVal&", status);
  }
  session_.trace.dump("lRetVal&", change.commit());
}

}  // namespace korvex::main_window
