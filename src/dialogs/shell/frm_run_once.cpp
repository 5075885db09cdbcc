// Showing the two lists of an area, and what the buttons do.
#include "dialogs/shell/frm_run_once.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "dialogs/shell/startup_program.h"
#include "engine/numeral_field.h"

namespace korvex::dialogs {

using forms::Layout;
using platform::ERROR_ALREADY_EXISTS;
using platform::ERROR_FILE_NOT_FOUND;
using platform::ERROR_SUCCESS;
using platform::Status;

namespace {

constexpr const char* kHeading = "Startup Apps";
constexpr const char* kAllUsers = "All Users Profile";
constexpr const char* kChooseArea = "Choose one of the areas above first.";

std::string counted(std::size_t count) {
  return fmt::format("{} {}", count, count == 1 ? "entry" : "entries");
}

}  // namespace

frmRunOnce::frmRunOnce(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - App Launch Manager", parts),
      apps_(parts.session) {
  if (!session().g_bNT) cmdShowRegRunOnce.Caption = "View RunServices";
  describe();
  arrange();
  onPress(cmdShowRegRun, [this] { view(StartupArea::RegRun); });
  onPress(cmdShowRegRunII, [this] { view(StartupArea::RegRunII); });
  onPress(cmdShowRegRunOnce, [this] { view(StartupArea::RegRunOnce); });
  onPress(cmdShowLoad_WinIni, [this] { view(StartupArea::WinLoad); });
  onPress(cmdShowRun_WinIni, [this] { view(StartupArea::WinRun); });
  onPress(cmdShowStartupGroup, [this] { view(StartupArea::StartUp); });
  onPress(cmdMoveRight, [this] { frmRunOnce_PopulateRightSide(); });
  onPress(cmdMoveLeft, [this] { frmRunOnce_PopulateLeftSide(); });
  onPress(cmdDelete, [this] { cmdDelete_Click(); });
  onPress(cmdShowRun_Add, [this] { cmdShowRun_Add_Click(); });
  onPress(cmdTakeBack, [this] { cmdTakeBack_Click(); });
  cmdDone.Click += [this] { close(); };
  lstRestoreApps.takesDropsFrom(lstViewAppsLaunched);
  lstViewAppsLaunched.takesDropsFrom(lstRestoreApps);
  lstRestoreApps.DragDrop +=
      [this] { trap("lstRestoreApps_DragDrop", [this] { frmRunOnce_PopulateRightSide(); }); };
  lstViewAppsLaunched.DragDrop +=
      [this] { trap("lstViewAppsLaunched_DragDrop", [this] { frmRunOnce_PopulateLeftSide(); }); };
  lstViewAppsLaunched.SelectionChange +=
      [this] { selectionChanged(lstViewAppsLaunched, lstRestoreApps); };
  lstRestoreApps.SelectionChange +=
      [this] { selectionChanged(lstRestoreApps, lstViewAppsLaunched); };
  cboDeleted.Click += [this] { showWhatCanBeDone(); };
}

void frmRunOnce::describe() {
  const auto places = [this](StartupArea wanted) {
    return fmt::format("Shows the startup apps{}", headingOf(wanted));
  };
  cmdShowRegRun.ToolTipText = places(StartupArea::RegRun);
  cmdShowRegRunII.ToolTipText = places(StartupArea::RegRunII);
  cmdShowRegRunOnce.ToolTipText = places(StartupArea::RegRunOnce);
  cmdShowLoad_WinIni.ToolTipText = places(StartupArea::WinLoad);
  cmdShowRun_WinIni.ToolTipText = places(StartupArea::WinRun);
  cmdShowStartupGroup.ToolTipText = places(StartupArea::StartUp);
  cmdMoveRight.AccessibleName = "Move right: switch off";
  cmdMoveLeft.AccessibleName = "Move left: switch on";
  lstViewAppsLaunched.WhatsThis =
      "What Windows starts by itself from this area. What is moved to the right does not start any "
      "more, but is kept as it was, so that it can be moved back.";
  lstRestoreApps.WhatsThis =
      "What was switched off here. Moved to the left it starts again. What is deleted can be taken "
      "back below.";
  txtCommand.ToolTipText = "The full command of the selected entry";
  txtOrigin.ToolTipText = "Where Windows reads the selected entry";
  cmdDone.ToolTipText = "Close this window";
}

void frmRunOnce::arrange() {
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {Layout::grid(3, {of(cmdShowRegRun), of(cmdShowRegRunII), of(cmdShowRegRunOnce),
                        of(cmdShowLoad_WinIni), of(cmdShowRun_WinIni), of(cmdShowStartupGroup)}),
       Layout::row(
           {Layout::column({of(lblViewAppsLaunched), of(lstViewAppsLaunched)}),
            Layout::column({Layout::space(), of(cmdMoveRight), of(cmdMoveLeft), Layout::space()}),
            Layout::column({of(lblAppsDisabled), of(lstRestoreApps)})}),
       Layout::grid(2, {of(lblCommand), of(txtCommand), of(lblOrigin), of(txtOrigin)}),
       of(lblState),
       Layout::row({of(lblDeleted), of(cboDeleted), of(cmdTakeBack), Layout::space()}),
       Layout::row({of(cmdShowRun_Add), of(cmdDelete), Layout::space(), of(cmdDone)})});
}

std::string frmRunOnce::headingOf(StartupArea wanted) const {
  if (wanted == StartupArea::RegRunOnce && !session().g_bNT) {
    return " found in HKEY_LOCAL_MACHINE RunServices key";
  }
  if (wanted == StartupArea::StartUp && apps_.folders().isOneFolder()) {
    return " within Startup Group";
  }
  return std::string(startupAreas()[static_cast<std::size_t>(wanted)].heading);
}

StartupArea frmRunOnce::area() const {
  return static_cast<StartupArea>(engine::numberIn(lblViewAppsLaunched.Tag).value_or(0));
}

// Tidying up writes, so it waits until the person asks to see something.
void frmRunOnce::view(StartupArea wanted) {
  apps_.tidyUp();
  lblViewAppsLaunched.Caption = kHeading;
  lblViewAppsLaunched.Caption = kHeading + headingOf(wanted);
  lblViewAppsLaunched.Tag = fmt::format("{}", static_cast<int>(wanted));
  readAgain();
}

void frmRunOnce::readMachine() {
  StartupLists lists;
  Status status = ERROR_SUCCESS;
  if (isAreaChosen()) status = apps_.p_EnumReg(area(), lists);
  fill(lstViewAppsLaunched, launched_, std::move(lists.launched));
  fill(lstRestoreApps, switchedOff_, std::move(lists.switchedOff));
  fillDeleted();
  if (status != ERROR_SUCCESS) {
    StatusText = fmt::format("This area could not be read from the machine: {}.",
                             platform::describeStatus(status));
  } else if (const auto move = apps_.interrupted()) {
    StatusText = fmt::format("Moving {} was interrupted and could not be finished yet.",
                             lastPart(move->name));
  } else if (isAreaChosen()) {
    StatusText =
        fmt::format("{} on, {} off", launched_.entries.size(), switchedOff_.entries.size());
  }
  showWhatCanBeDone();
}

void frmRunOnce::fill(forms::MultiList& list, Shown& shown, StartupEntries entries) {
  settingSelection_ = true;
  list.Clear();
  shown = {std::move(entries), {}};
  const auto heading = [&](const std::string& text) {
    list.AddItem(text);
    shown.entryOfLine.push_back(-1);
  };
  const bool groups = isAreaChosen() && area() == StartupArea::StartUp;
  const bool common = groups && !apps_.folders().isOneFolder();
  const std::string& user = session().g_sCurrentUser;
  if (groups) heading((user.empty() ? "User" : user) + " Profile");
  bool inCommon = false;
  for (std::size_t i = 0; i < shown.entries.size(); ++i) {
    if (shown.entries[i].allUsers && !std::exchange(inCommon, true)) heading(kAllUsers);
    list.AddItem(shown.entries[i].text);
    shown.entryOfLine.push_back(static_cast<int>(i));
  }
  if (common && !inCommon) heading(kAllUsers);
  settingSelection_ = false;
}

void frmRunOnce::fillDeleted() {
  cboDeleted.Clear();
  deleted_.clear();
  if (isAreaChosen()) deleted_ = apps_.place(area()).deleted();
  for (const auto& item : deleted_) {
    cboDeleted.AddItem(
        fmt::format("{} ({})", item.name.empty() ? item.value : item.name, item.when));
  }
}

StartupEntries frmRunOnce::selected(const forms::MultiList& list, const Shown& shown) const {
  StartupEntries result;
  for (const int line : list.selectedIndices()) {
    const int entry = shown.entryOfLine[static_cast<std::size_t>(line)];
    if (entry >= 0) result.push_back(shown.entries[static_cast<std::size_t>(entry)]);
  }
  return result;
}

// Command and place below are those of one entry: only one list has a selection.
void frmRunOnce::selectionChanged(forms::MultiList& list, forms::MultiList& other) {
  if (settingSelection_) return;
  settingSelection_ = true;
  if (!list.selectedIndices().empty()) other.ListIndex = -1;
  settingSelection_ = false;
  showWhatCanBeDone();
}

void frmRunOnce::showWhatCanBeDone() {
  const bool chosen = isAreaChosen();
  const auto enable = [&](forms::Control& control, bool enabled, const std::string& what,
                          const std::string& whyNot) {
    control.Enabled = enabled;
    control.ToolTipText = enabled ? what : chosen ? whyNot : kChooseArea;
  };
  const bool left = !selected(lstViewAppsLaunched, launched_).empty();
  const bool right = !selected(lstRestoreApps, switchedOff_).empty();
  const bool deleted = !deleted_.empty();
  enable(lstViewAppsLaunched, chosen, "What Windows starts by itself from here", "");
  enable(lstRestoreApps, chosen, "What was switched off and can be put back", "");
  enable(cmdMoveRight, left, "Switches the selected entries off",
         "Select an entry of the left list first.");
  enable(cmdMoveLeft, right, "Switches the selected entries on again",
         "Select an entry of the right list first.");
  enable(cmdDelete, right, "Deletes the selected disabled entries",
         "Select an entry of the right list first: switch off what is to be deleted.");
  enable(cboDeleted, deleted, "What was deleted from this area, the last first",
         "Nothing was deleted here.");
  enable(cmdTakeBack, cboDeleted.ListIndex >= 0, "Puts the deleted entry back where it was",
         deleted ? "Choose a deleted entry first." : "Nothing was deleted here.");
  cmdShowRun_Add.ToolTipText =
      chosen ? "Chooses a program to start from this area" : "Adds a program to the area on show";
  showEntry();
}

void frmRunOnce::showEntry() {
  StartupEntries entries = selected(lstViewAppsLaunched, launched_);
  if (entries.empty()) entries = selected(lstRestoreApps, switchedOff_);
  const bool one = entries.size() == 1;
  txtCommand.Text = one ? entries.front().command : "";
  txtOrigin.Text = one ? entries.front().origin : "";
  lblState.Caption = one               ? forms::captionOf(programOf(session(), entries[0]).state)
                     : entries.empty() ? "No entry is selected."
                                       : fmt::format("{} are selected.", counted(entries.size()));
}

std::string frmRunOnce::failureOf(const StartupEntry& entry, Status status,
                                  std::string_view routine) {
  session().trace.dump("lRetVal&", status);
  session().trace.add(fmt::format("ERROR - {}", routine));
  if (status == ERROR_FILE_NOT_FOUND) {
    return fmt::format("{}: it has been changed or removed meanwhile.", entry.name);
  }
  if (status == ERROR_ALREADY_EXISTS) {
    return fmt::format("{}: another entry of this name stands there already.", entry.name);
  }
  return fmt::format("{}: {}.", entry.name, platform::describeStatus(status));
}

void frmRunOnce::finish(const StartupEntries& moved, const std::vector<std::string>& failures,
                        std::string_view done) {
  const bool written =
      moved.empty() || engine::finishAtOnce(session(), "The startup programs", ERROR_SUCCESS);
  readAgain();
  if (written && !moved.empty()) StatusText = fmt::format("{} {}.", counted(moved.size()), done);
  if (failures.empty()) return;
  std::string text = "This could not be done, and is as it was:";
  for (const std::string& failure : failures) text += "\r\n" + failure;
  tell(text, platform::kIconExclamation);
}

void frmRunOnce::selectAgain(forms::MultiList& list, const Shown& shown,
                             const StartupEntries& moved) {
  for (std::size_t line = 0; line < shown.entryOfLine.size(); ++line) {
    const int at = shown.entryOfLine[line];
    if (at < 0) continue;
    const StartupEntry& entry = shown.entries[static_cast<std::size_t>(at)];
    const bool was = std::ranges::any_of(moved, [&](const StartupEntry& one) {
      return one.name == entry.name && one.allUsers == entry.allUsers;
    });
    if (was) list.setSelected(static_cast<int>(line), true);
  }
}

void frmRunOnce::frmRunOnce_PopulateRightSide() {
  session().trace.enter("[frmRunOnce_PopulateRightSide]");
  StartupEntries moved;
  std::vector<std::string> failures;
  for (const StartupEntry& entry : selected(lstViewAppsLaunched, launched_)) {
    const Status status = apps_.switchOff(entry);
    if (status == ERROR_SUCCESS) {
      moved.push_back(entry);
    } else {
      failures.push_back(failureOf(entry, status, "frmRunOnce_PopulateRightSide"));
    }
  }
  if (moved.empty() && failures.empty()) return;
  finish(moved, failures, "switched off");
  selectAgain(lstRestoreApps, switchedOff_, moved);
}

Status frmRunOnce::putBack(const StartupEntry& entry) {
  const Status status = apps_.switchOn(entry, Replace::No);
  if (status != ERROR_ALREADY_EXISTS) return status;
  if (!askYesNo(fmt::format("Another entry named {} starts there already.\r\n\r\n"
                            "Replace it by the one that was switched off?\r\n"
                            "The other one is kept: {}.",
                            entry.name,
                            entry.isFile ? "it is switched off" : "it can be taken back"))) {
    return platform::ERROR_CANCELLED;
  }
  return apps_.switchOn(entry, Replace::Yes);
}

void frmRunOnce::frmRunOnce_PopulateLeftSide() {
  session().trace.enter("[frmRunOnce_PopulateLeftSide]");
  StartupEntries moved;
  std::vector<std::string> failures;
  for (const StartupEntry& entry : selected(lstRestoreApps, switchedOff_)) {
    const Status status = putBack(entry);
    if (status == ERROR_SUCCESS) {
      moved.push_back(entry);
    } else if (status != platform::ERROR_CANCELLED) {
      failures.push_back(failureOf(entry, status, "frmRunOnce_PopulateLeftSide"));
    }
  }
  if (moved.empty() && failures.empty()) return;
  finish(moved, failures, "switched on");
  selectAgain(lstViewAppsLaunched, launched_, moved);
}

void frmRunOnce::cmdDelete_Click() {
  session().trace.enter("[frmRunOnce_cmdDelete_Click]");
  const StartupEntries entries = selected(lstRestoreApps, switchedOff_);
  if (entries.empty()) return;
  if (!askYesNo(
          std::string(
              "Are you certain you want to permanently remove your ability to restore this ") +
          (entries.size() < 2 ? "value?" : "values?"))) {
    return;
  }
  StartupEntries gone;
  std::vector<std::string> failures;
  for (const StartupEntry& entry : entries) {
    const Status status = apps_.forget(entry);
    if (status == ERROR_SUCCESS) {
      gone.push_back(entry);
    } else {
      failures.push_back(failureOf(entry, status, "frmRunOnce_cmdDelete_Click"));
    }
  }
  finish(gone, failures, "deleted");
}

void frmRunOnce::cmdShowRun_Add_Click() {
  session().trace.enter("[frmRunOnce_cmdShowRun_Add_Click]");
  if (lblViewAppsLaunched.Caption.get() == kHeading) {
    return tell(
        "Before adding an application you must first select\r\n"
        "an area to add it to, e.g. 'View Load =', 'View Run ='");
  }
  platform::FileRequest request;
  request.title = kHeading;
  request.filter =
      "All Files (*.*)|*.*|Executable Files"
      "(*.exe)|*.exe|Shortcut Files"
      "(*.lnk)|*.lnk";
  request.folder = session().g_sRoot;
  const auto chosen = session().prompts().pickFile(request);
  if (!chosen) return;
  bool shortPathFails = false;
  const Status status = apps_.add(area(), *chosen, shortPathFails);
  if (shortPathFails) {
    session().trace.dump("lRetVal&", status);
    session().trace.add("ERROR - frmRunOnce_cmdShowRun_Add_Click");
    return tell(
        "The short path of the selected file cannot be obtained.\r\n\r\n"
        "The likely cause of this error: \r\n"
        "The file resides on a remote volume where the network\r\n"
        "client does not support long file names across the network.\r\n\r\n"
        "The process cannot continue.",
        platform::kIconExclamation);
  }
  StartupEntry added;
  added.name = lastPart(*chosen);
  if (status == ERROR_SUCCESS) return finish({added}, {}, "added");
  if (status == ERROR_ALREADY_EXISTS) {
    return tell(fmt::format("{} starts from this area already.", added.name));
  }
  finish({}, {failureOf(added, status, "frmRunOnce_cmdShowRun_Add_Click")}, "");
}

void frmRunOnce::cmdTakeBack_Click() {
  session().trace.enter("[frmRunOnce_cmdTakeBack_Click]");
  const int index = cboDeleted.ListIndex;
  if (index < 0) return;
  const engine::TakenAway::Item item = deleted_[static_cast<std::size_t>(index)];
  StartupEntry entry;
  entry.name = item.name.empty() ? item.value : item.name;
  const Status status = apps_.takeBack(area(), item);
  if (status == ERROR_SUCCESS) return finish({entry}, {}, "taken back");
  finish({}, {failureOf(entry, status, "frmRunOnce_cmdTakeBack_Click")}, "");
}

}  // namespace korvex::dialogs
