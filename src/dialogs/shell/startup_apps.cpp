// The table of the areas, and what is asked of all of them.
#include "dialogs/shell/startup_apps.h"

#include <algorithm>

#include "dialogs/shell/startup_line.h"
#include "engine/same_name.h"

namespace korvex::dialogs {

using platform::ERROR_SUCCESS;
using platform::HKEY_CURRENT_USER;
using platform::HKEY_LOCAL_MACHINE;
using platform::Status;

namespace {

constexpr std::string_view kRun = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr std::string_view kRunOnce = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\RunOnce";
constexpr std::string_view kRunServices =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\RunServices";

constexpr std::array kAreas{
    StartupAreaRow{StartupArea::RegRun, "Reg_Run", " found in HKEY_LOCAL_MACHINE Run key"},
    StartupAreaRow{StartupArea::RegRunII, "Reg_RunII", " found in HKEY_CURRENT_USER Run key"},
    StartupAreaRow{StartupArea::RegRunOnce, "Reg_RunOnce",
                   " found in HKEY_LOCAL_MACHINE RunOnce key"},
    StartupAreaRow{StartupArea::WinLoad, "Win_Load", " found on WIN.INI load= line"},
    StartupAreaRow{StartupArea::WinRun, "Win_Run", " found on WIN.INI run= line"},
    StartupAreaRow{StartupArea::StartUp, "StartUp", " within Startup Groups"},
};

std::string_view nameOf(StartupArea area) { return kAreas[static_cast<std::size_t>(area)].name; }

}  // namespace

std::span<const StartupAreaRow> startupAreas() { return kAreas; }

StartupApps::StartupApps(foundation::Session& session) : session_(session) {
  const auto put = [this](StartupArea area, std::unique_ptr<StartupPlace> made) {
    places_[static_cast<std::size_t>(area)] = std::move(made);
  };
  const auto key = [&](StartupArea area, platform::HKEY root, std::string_view path) {
    put(area, std::make_unique<StartupKey>(session, area, nameOf(area), root, path));
  };
  const auto line = [&](StartupArea area, const char* name) {
    put(area, std::make_unique<StartupLine>(session, area, nameOf(area), name));
  };
  key(StartupArea::RegRun, HKEY_LOCAL_MACHINE, kRun);
  key(StartupArea::RegRunII, HKEY_CURRENT_USER, kRun);
  key(StartupArea::RegRunOnce, HKEY_LOCAL_MACHINE, session.g_bNT ? kRunOnce : kRunServices);
  line(StartupArea::WinLoad, "load");
  line(StartupArea::WinRun, "run");
  auto folders = std::make_unique<StartupFolders>(session, nameOf(StartupArea::StartUp));
  folders_ = folders.get();
  put(StartupArea::StartUp, std::move(folders));
}

Status StartupApps::p_EnumReg(StartupArea area, StartupLists& lists) {
  session_.trace.enter("[p_EnumReg]");
  session_.trace.dump("sArea$", nameOf(area));
  lists = {};
  Status status = place(area).launched(lists.launched);
  if (status == ERROR_SUCCESS) status = place(area).switchedOff(lists.switchedOff);
  if (status != ERROR_SUCCESS) {
    lists = {};
    session_.trace.dump("lRetVal&", status);
    session_.trace.add("ERROR - p_EnumReg");
  }
  return status;
}

std::optional<PendingMove> StartupApps::interrupted() {
  std::optional<PendingMove> move;
  const Status status = PendingMoves(session_).read(move);
  if (status != ERROR_SUCCESS) session_.trace.dump("lRetVal&", status);
  return move;
}

Status StartupApps::finishInterrupted() {
  std::optional<PendingMove> move;
  Status status = PendingMoves(session_).read(move);
  if (status != ERROR_SUCCESS || !move) return status;
  session_.trace.dump("[finishInterrupted]: sName$", move->name);
  const auto row = std::ranges::find_if(
      kAreas, [&](const StartupAreaRow& one) { return engine::sameName(one.name, move->area); });
  // One that no version of the program has noted is none.
  status =
      row == kAreas.end() ? PendingMoves(session_).end(false, {}) : place(row->area).finish(*move);
  return status == ERROR_SUCCESS ? session_.registry().flush() : status;
}

void StartupApps::tidyUp() {
  const Status status = finishInterrupted();
  if (status != ERROR_SUCCESS) {
    session_.trace.dump("lRetVal&", status);
    session_.trace.add("ERROR - finishInterrupted");
    return;
  }
  folders_->p_ConsolidateStartupBackup();
}

Status StartupApps::switchOff(const StartupEntry& entry) {
  const Status status = finishInterrupted();
  return status == ERROR_SUCCESS ? place(entry.area).switchOff(entry) : status;
}

Status StartupApps::switchOn(const StartupEntry& entry, Replace replace) {
  const Status status = finishInterrupted();
  return status == ERROR_SUCCESS ? place(entry.area).switchOn(entry, replace) : status;
}

Status StartupApps::forget(const StartupEntry& entry) {
  const Status status = finishInterrupted();
  return status == ERROR_SUCCESS ? place(entry.area).forget(entry) : status;
}

Status StartupApps::takeBack(StartupArea area, const engine::TakenAway::Item& item) {
  const Status status = finishInterrupted();
  return status == ERROR_SUCCESS ? place(area).takeBack(item) : status;
}

Status StartupApps::add(StartupArea area, const std::string& path, bool& shortPathFails) {
  std::string shortPath;
  Status status = session_.machine().systemInfo().GetShortPathNameA(path, shortPath);
  shortPathFails = status != ERROR_SUCCESS || shortPath.empty();
  if (shortPathFails) return status == ERROR_SUCCESS ? platform::ERROR_BAD_PATHNAME : status;
  status = finishInterrupted();
  return status == ERROR_SUCCESS ? place(area).add(shortPath, path) : status;
}

}  // namespace korvex::dialogs
