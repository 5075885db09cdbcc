// Changing the list, and writing the policy when the window goes.
#include "dialogs/shell/frm_restrict_run.h"

#include <fmt/format.h>

#include <utility>

#include "engine/raw_value.h"

namespace korvex::dialogs {

using forms::Layout;
using platform::ERROR_SUCCESS;
using platform::Status;

namespace {

constexpr std::string_view kKorvex = "korvex.exe";
constexpr std::string_view kSystray = "systray.exe";

constexpr std::string_view kConfiguration = "SOFTWARE\\Korvex\\Configuration";
// What came of the warning, 1 where the person agreed; and 1 where the policy was switched off for
// want of programs.
constexpr std::string_view kAnswerRecord = "RR";
constexpr std::string_view kSwitchRecord = "RRm";

constexpr std::string_view kBothMissing =
    "You have selected to restrict Korvex and Systray from running.\r\n"
    "You may need Korvex in order to restore the system to normal.\r\n"
    "Further, Systray is a vital Windows component. Not allowing it to run could make Windows "
    "unstable.\r\n"
    "Are you certain you wish to disallow these applications?";
constexpr std::string_view kKorvexMissing =
    "You have selected to restrict Korvex from running.\r\n"
    "You may need Korvex in order to restore the system to normal.\r\n"
    "Are you certain you wish to restrict Korvex?";
constexpr std::string_view kSystrayMissing =
    "You have selected to restrict Systray from running.\r\n"
    "Systray is a vital Windows component. Not allowing it to run could make Windows unstable.\r\n"
    "Are you certain you wish to restrict Systray?";
constexpr std::string_view kNoPrograms =
    "You have selected to enable retricted applications but have not set\r\n"
    "any applications to run.\r\n\r\n"
    "This is not a valid configuration and the option has been disabled.";
constexpr const char* kSwitchFirst = "Tick the box above first: the list counts only with it.";

}  // namespace

frmRestrictRun::frmRestrictRun(const DialogParts& parts, LogonBitmapDesk& desk)
    : DirectDialog(kName, "Korvex...for Power Users - Restrict Applications", parts), desk_(desk) {
  describe();
  arrange();
  chkRestrictRun.Click += [this] { showWhatCanBeDone(); };
  lstAllowed.SelectionChange += [this] { showWhatCanBeDone(); };
  onPress(cmdAdd, [this] { cmdAdd_Click(); });
  onPress(cmdRemove, [this] { cmdRemove_Click(); });
  onPress(cmdFormer, [this] { cmdFormer_Click(); });
  // Written by then, so that whoever drives the window sees it as what the button did.
  cmdDone.Click += [this] {
    if (QueryUnload()) close();
  };
  cmdCancel.Click += [this] {
    cancelled_ = true;
    close();
  };
}

void frmRestrictRun::describe() {
  chkRestrictRun.ToolTipText =
      "Explorer starts no programs but those of the list...default is unchecked...restart required";
  chkRestrictRun.WhatsThis =
      "Sets the value RestrictRun of the key "
      "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer to "
      "DWORD "
      "1, and the key RestrictRun below it to one value for each program. Explorer then refuses to "
      "start all others for this user, by a double click, from the Start menu and in Run, whatever "
      "folder they lie in. What another program starts is not looked at.\r\n"
      "Unticked, the list goes too when this window closes; \"Former list\" brings it back.";
  lstAllowed.ToolTipText = "The names of the programs' files; where they lie does not count";
  cmdFormer.ToolTipText = "Put the programs of the list that was switched off last into this one";
  cmdDone.ToolTipText = "Write the policy to the machine and close this window";
  cmdCancel.ToolTipText = "Close this window; the policy stays as it is";
}

void frmRestrictRun::arrange() {
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {of(chkRestrictRun), of(lblWarning), of(lblHint), of(lblAllowed),
       Layout::row({of(lstAllowed),
                    Layout::column({of(cmdAdd), of(cmdRemove), of(cmdFormer), Layout::space()})}),
       Layout::row({Layout::space(), of(cmdDone), of(cmdCancel)})});
}

Status frmRestrictRun::p_DetermineAllowedApps() {
  session().trace.enter("[p_DetermineAllowedApps]");
  status_ = readRestrictedPrograms(session(), shown_);
  lstAllowed.Clear();
  for (const std::string& program : shown_.programs) lstAllowed.AddItem(program);
  return status_;
}

void frmRestrictRun::readMachine() {
  noteRead(p_DetermineAllowedApps());
  chkRestrictRun.Value = shown_.on ? forms::vbChecked : forms::vbUnchecked;
  former_ = formerPrograms(session());
  showWhatCanBeDone();
  engine::RawValue record;
  engine::readRawValue(registry(), platform::HKEY_LOCAL_MACHINE, kConfiguration, kSwitchRecord,
                       record);
  if (!shown_.on && record.number(0) != 0) {
    StatusText = "Switched off when this window was closed last: no applications were set.";
  }
}

RestrictedPrograms frmRestrictRun::wanted() const {
  return {chkRestrictRun.Value == forms::vbChecked, lstAllowed.items()};
}

int frmRestrictRun::changesWaiting() const {
  return cancelled_ || status_ != ERROR_SUCCESS || wanted() == shown_ ? 0 : 1;
}

void frmRestrictRun::showWhatCanBeDone() {
  const bool on = chkRestrictRun.Value == forms::vbChecked;
  const auto allow = [on](forms::CommandButton& button, bool possible, const char* toolTip) {
    button.Enabled = on && possible;
    button.ToolTipText = on ? toolTip : kSwitchFirst;
  };
  allow(cmdAdd, true, "Type or choose a program that may run");
  const bool selected = !lstAllowed.selectedIndices().empty();
  allow(cmdRemove, selected,
        selected ? "Take the selected programs out of the list"
                 : "Select a program first: it is taken out of the list");
  allow(cmdFormer, !former_.empty(),
        former_.empty() ? "No list was switched off yet"
                        : "Put the programs of the list that was switched off last into this one");
  const int count = lstAllowed.ListCount();
  if (!on) {
    StatusText = count == 0 ? "All applications may run"
                            : "All applications may run; the list goes when this window closes";
  } else {
    StatusText = fmt::format("{} {} may run", count, count == 1 ? "application" : "applications");
  }
}

void frmRestrictRun::cmdAdd_Click() {
  session().trace.enter("[frmRestrictRun_cmdAdd]");
  desk_.mode = LogonBitmapDesk::kRestrictRun;
  desk_.name.clear();
  parts().formBook.showModal(frmLogon_Bitmap::kName);
  desk_.mode.clear();
  const std::string chosen = std::exchange(desk_.name, "");
  const std::string name = programName(chosen);
  if (name.empty()) return;
  if (wanted().allows(name)) return tell(fmt::format("{} is in the list already.", name));
  lstAllowed.AddItem(name);
  showWhatCanBeDone();
  StatusText = fmt::format("{} added: by its name, wherever it lies", name);
}

void frmRestrictRun::cmdRemove_Click() {
  const std::vector<int> selected = lstAllowed.selectedIndices();
  for (auto index = selected.rbegin(); index != selected.rend(); ++index) {
    lstAllowed.RemoveItem(*index);
  }
  showWhatCanBeDone();
}

void frmRestrictRun::cmdFormer_Click() {
  for (const std::string& program : former_) {
    if (!wanted().allows(program)) lstAllowed.AddItem(program);
  }
  showWhatCanBeDone();
}

frmRestrictRun::Warning frmRestrictRun::warn(RestrictedPrograms& programs) const {
  const bool korvex = programs.allows(kKorvex);
  const bool systray = programs.allows(kSystray);
  if (korvex && systray) return {};
  const std::string_view question =
      korvex ? kSystrayMissing : (systray ? kKorvexMissing : kBothMissing);
  if (askYesNo(question, platform::kIconCritical | platform::kDefaultButton2)) return {true, true};
  if (!korvex) programs.programs.emplace_back(kKorvex);
  if (!systray) programs.programs.emplace_back(kSystray);
  return {true, false};
}

Status frmRestrictRun::record(const Warning& warning, bool switchedOff) {
  const auto put = [this](std::string_view name, std::int32_t number) {
    return engine::putValue(session(), platform::HKEY_LOCAL_MACHINE, kConfiguration, name, number);
  };
  Status status = warning.asked ? put(kAnswerRecord, warning.agreed ? 1 : 0) : ERROR_SUCCESS;
  if (status != ERROR_SUCCESS) return status;
  return switchedOff ? put(kSwitchRecord, 1)
                     : engine::dropValue(session(), platform::HKEY_LOCAL_MACHINE, kConfiguration,
                                         kSwitchRecord);
}

bool frmRestrictRun::isUnchanged() {
  RestrictedPrograms now;
  const Status status = readRestrictedPrograms(session(), now);
  if (status != ERROR_SUCCESS) {
    tell(fmt::format("The allowed applications could not be read: {}.\r\nNothing was changed.",
                     platform::describeStatus(status)),
         platform::kIconExclamation);
    return false;
  }
  if (now == shown_) return true;
  readAgain();
  tell("The allowed applications have been changed meanwhile. Please choose once more.");
  return false;
}

bool frmRestrictRun::write() {
  RestrictedPrograms programs = wanted();
  const bool without = programs.on && programs.programs.empty();
  if (without) tell(kNoPrograms, platform::kIconCritical);
  const Warning warning = programs.on && !without ? warn(programs) : Warning{};
  // What was added on the person's answer may be what stands there.
  const bool differs = without ? shown_.on || !shown_.programs.empty() : programs != shown_;
  const bool written = engine::changeAtOnce(session(), "The list of allowed applications", [&] {
    const Status status = differs ? writeRestrictedPrograms(session(), programs) : ERROR_SUCCESS;
    return status == ERROR_SUCCESS ? record(warning, without) : status;
  });
  if (!written) {
    // It may stand there and have failed to reach the disk.
    RestrictedPrograms now;
    if (readRestrictedPrograms(session(), now) == ERROR_SUCCESS) shown_ = now;
    return false;
  }
  if (differs) session().g_bRebootNeeded = true;
  if (warning.asked && !warning.agreed) {
    tell("What you wish to go on using has been added to the allowed applications.");
  }
  readAgain();
  return true;
}

bool frmRestrictRun::QueryUnload() {
  if (session().endRequested() || cancelled_ || status_ != ERROR_SUCCESS) return true;
  // A policy that is on and allows nothing is none that may stay.
  const bool changed = changesWaiting() > 0 || (shown_.on && shown_.programs.empty());
  if (!changed) return true;
  bool done = false;
  trap("QueryUnload", [this, &done] {
    session().trace.enter("[frmRestrictRun_QueryUnload]");
    done = isUnchanged() && write();
  });
  return done;
}

}  // namespace korvex::dialogs
