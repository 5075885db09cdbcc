// Folders of the shell: those of My Computer and Control Panel that a tweak takes away, and those
// that cascade on the Start menu.
#include "engine/shell_folders.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "engine/catalogue/rows.h"
#include "engine/conditions.h"
#include "engine/kept_values.h"
#include "engine/raw_value.h"
#include "engine/readers.h"
#include "engine/reg_worker.h"

namespace korvex::engine {

using foundation::Os;
using foundation::Session;
using platform::ERROR_SUCCESS;
using platform::Status;

namespace {

constexpr std::string_view kNameSpaces = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer";
constexpr std::string_view kMyComputer = "MyComputer";
constexpr std::string_view kControlPanel = "ControlPanel";

constexpr std::string_view kDialUp9x = "{992CFFA0-F557-101A-88EC-00DD010CCC48}";
constexpr std::string_view kDialUpNt4 = "{a4d92740-67cd-11cf-96f2-00aa00a11dd9}";
constexpr std::string_view kNetworkConnections = "{7007ACC7-3202-11D1-AAD2-00805FC1270E}";
constexpr std::string_view kScheduledTasks = "{D6277990-4C6A-11CF-8D87-00AA0060F5BF}";
constexpr std::string_view kWebFolders = "{BDEADF00-C265-11D0-BCED-00A0C90AB50F}";
constexpr std::string_view kAdministrativeTools = "{D20EA4E1-3957-11d2-A40B-0C5020524153}";

// Where a Windows has a folder by itself, and under which name.
struct Home {
  std::string_view property;
  Families families;
  std::string_view nameSpace;
  std::string_view classId;
  std::string_view name;
};
constexpr std::array kHomes{
    Home{"P_rwRemoveDUN", kWin95 | kWin98, kMyComputer, kDialUp9x, "Dial-Up Networking"},
    Home{"P_rwRemoveDUN", kWinMe, kControlPanel, kDialUp9x, "Dial-Up Networking"},
    Home{"P_rwRemoveDUN", kNT4, kMyComputer, kDialUpNt4, "Dial-Up Networking"},
    Home{"P_rwRemoveDUN", kWin2000, kControlPanel, kNetworkConnections, "Network Connections"},
    Home{"P_rwRemoveScdulyTasks", kWin95 | kWin98 | kNT4, kMyComputer, kScheduledTasks,
         "Scheduled Tasks"},
    Home{"P_rwRemoveScdulyTasks", kWinMe | kWin2000, kControlPanel, kScheduledTasks,
         "Scheduled Tasks"},
    Home{"P_rwRemoveWebFolders", k9x | kNT4, kMyComputer, kWebFolders, "Web Folders"},
    Home{"P_rwRemoveWebFolders", kWin2000, kControlPanel, kAdministrativeTools,
         "Administrative Tools"},
};

std::string keyOf(std::string_view nameSpace, std::string_view classId) {
  return fmt::format("{}\\{}\\NameSpace\\{}", kNameSpaces, nameSpace, classId);
}

const Home* homeOf(const Tweak& tweak, const Session& session) {
  const auto found = std::ranges::find_if(kHomes, [&](const Home& home) {
    return home.property == tweak.property && (home.families & familyOf(session)) != 0;
  });
  return found == kHomes.end() ? nullptr : &*found;
}

// Every key that shows the folder on this machine. A Windows that was upgraded, or a newer browser,
// may have another class than its own. Administrative Tools and Web Folders are two folders that
// share a box: 2000 has both.
std::vector<std::string> placesOf(const Tweak& tweak, const Session& session) {
  const Home* own = homeOf(tweak, session);
  std::vector<std::string> places;
  for (const Home& home : kHomes) {
    if (home.property != tweak.property || own == nullptr) continue;
    const bool otherFolder =
        (home.classId == kAdministrativeTools || own->classId == kAdministrativeTools) &&
        home.classId != own->classId;
    if (otherFolder) continue;
    for (const std::string_view nameSpace : {kMyComputer, kControlPanel}) {
      std::string place = keyOf(nameSpace, home.classId);
      if (std::ranges::find(places, place) == places.end()) places.push_back(std::move(place));
    }
  }
  return places;
}

bool keyExists(Session& session, Root root, std::string_view path) {
  return platform::OpenKey(session.registry(), root, path, platform::KEY_QUERY_VALUE).status() ==
         ERROR_SUCCESS;
}

Status findShown(const Tweak& tweak, Session& session, bool& shown) {
  shown = false;
  for (const std::string& place : placesOf(tweak, session)) {
    const Status status =
        platform::OpenKey(session.registry(), HKLM, place, platform::KEY_QUERY_VALUE).status();
    if (missingIsFine(status) != ERROR_SUCCESS) return status;
    shown = shown || status == ERROR_SUCCESS;
  }
  return ERROR_SUCCESS;
}

bool anyShown(const Tweak& tweak, Session& session) {
  bool shown = false;
  findShown(tweak, session, shown);
  return shown;
}

TweakState fromBool(bool on) { return {on ? TweakState::Kind::On : TweakState::Kind::Off, {}}; }

// A folder of the Start menu that shows its content as a menu.
struct Cascade {
  std::string_view property;
  std::string_view name;
  std::string_view folder;
};
constexpr std::array kCascades{
    Cascade{"P_rwPrinters", "Printers", "Printers.{2227A280-3AEA-1069-A2DE-08002B30309D}"},
    Cascade{"P_rwControlPanel", "Control Panel",
            "Control Panel.{21EC2020-3AEA-1069-A2DD-08002B30309D}"},
    Cascade{"P_rwHistory", "History", "History.{FF393560-C2A7-11CF-bff4-444553540000}"},
};

const Cascade& cascadeOf(const Tweak& tweak) {
  return *std::ranges::find(kCascades, tweak.property, &Cascade::property);
}

std::string inMenu(const std::string& menu, const Cascade& cascade) {
  return menu.size() < 2 ? "" : fmt::format("{}\\{}", menu, cascade.folder);
}

std::array<std::string, 2> cascadePlaces(const Tweak& tweak, const Session& session) {
  const Cascade& cascade = cascadeOf(tweak);
  return {inMenu(session.pd.StartMenuPath, cascade), inMenu(session.pd.CommStartMenuPath, cascade)};
}

bool anyPlaceExists(Session& session, const std::array<std::string, 2>& places) {
  return std::ranges::any_of(places, [&](const std::string& place) {
    return !place.empty() && session.files().exists(place);
  });
}

}  // namespace

bool RegWorker::p_HandleRemoveOfNameSpace(const Tweak& tweak) {
  session_.trace.enter(fmt::format("[p_HandleRemoveOfNameSpace_{}]", tweak.property));
  const std::vector<std::string> places = placesOf(tweak, session_);
  if (wantsOn(tweak)) {
    for (const std::string& place : places) {
      if (!keep(keepTree(session_, tweak, HKLM, place)) || !removeTree(HKLM, place)) return false;
    }
    return finishSpecial(tweak);
  }
  for (const std::string& place : places) {
    bool wasKept = false;
    if (!keep(putBackTree(session_, tweak, HKLM, place, wasKept))) return false;
  }
  bool shown = false;
  if (!keep(findShown(tweak, session_, shown))) return false;
  const Home* home = homeOf(tweak, session_);
  if (home != nullptr && !shown &&
      !write(HKLM, keyOf(home->nameSpace, home->classId), "", home->name)) {
    return false;
  }
  return finishSpecial(tweak);
}

TweakState p_DetermineNameSpace(const Tweak& tweak, Session& session) {
  return fromBool(!anyShown(tweak, session));
}

std::string_view needsNameSpaceFolder(const Tweak& tweak, Session& session) {
  const Home* home = homeOf(tweak, session);
  if (home == nullptr) return "This Windows has no such folder.";
  if (anyShown(tweak, session)) return "";
  const auto places = placesOf(tweak, session);
  const bool kept = std::ranges::any_of(
      places, [&](const std::string& place) { return isTreeKept(session, tweak, HKLM, place); });
  const bool registered = keyExists(session, HKCR, fmt::format("CLSID\\{}", home->classId));
  return kept || registered ? "" : "This Windows has no such folder.";
}

bool RegWorker::askForWhom(const Tweak& tweak) {
  forAllUsers_ = false;
  if (!wantsOn(tweak) || anyPlaceExists(session_, cascadePlaces(tweak, session_))) return true;
  const std::string question = fmt::format(
      "Would you like the cascading {} menu enabled\r\n"
      "for you only (Yes) or all users (No)?",
      cascadeOf(tweak).name);
  const platform::Answer answer = session_.prompts().messageBox(
      question, platform::kButtonsYesNo | platform::kIconQuestion, foundation::kAppTitle);
  forAllUsers_ = answer == platform::Answer::No;
  return forAllUsers_ || answer == platform::Answer::Yes;
}

bool RegWorker::p_PrintersAndControlPanelAndHistory(const Tweak& tweak) {
  session_.trace.enter(fmt::format("[p_PrintersAndControlPanelAndHistory_{}]", tweak.property));
  const std::array<std::string, 2> places = cascadePlaces(tweak, session_);
  if (wantsOn(tweak)) {
    if (anyPlaceExists(session_, places)) return finishSpecial(tweak);
    const std::string& place = places[forAllUsers_ ? 1 : 0];
    // Without a folder in the record there is no such menu on this machine.
    if (place.empty()) return keep(platform::ERROR_PATH_NOT_FOUND);
    return keep(files().createFolder(place)) && finishSpecial(tweak);
  }
  for (const std::string& place : places) {
    if (place.empty()) continue;
    const Status status = files().removeFolder(place);
    if (status != platform::ERROR_PATH_NOT_FOUND && !keep(missingIsFine(status))) return false;
  }
  return finishSpecial(tweak);
}

TweakState p_DetermineControlPanel_Printers_History(const Tweak& tweak, Session& session) {
  return fromBool(anyPlaceExists(session, cascadePlaces(tweak, session)));
}

}  // namespace korvex::engine
