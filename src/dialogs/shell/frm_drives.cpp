// Showing the marks, and writing them.
#include "dialogs/shell/frm_drives.h"

#include <fmt/format.h>

#include "dialogs/shell/drive_kinds.h"

namespace korvex::dialogs {

using forms::Layout;
using platform::Status;

frmDrives::frmDrives(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Hide Drives", parts) {
  lstDrives.ToolTipText = "Ticked drives are hidden in My Computer...default is none";
  lstDrives.WhatsThis =
      "Sets the value NoDrives of the key "
      "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer to four "
      "bytes with one bit for each letter. Explorer reads it when it starts.";
  cmdHideAll.ToolTipText = "Tick every drive";
  cmdShowAll.ToolTipText = "Take every tick away";
  cmdDone.ToolTipText = "Write the hidden drives to the machine and close this window";
  cmdCancel.ToolTipText = "Close this window; the hidden drives stay as they are";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {of(lblDrives),
       Layout::row(
           {of(lstDrives), Layout::column({of(cmdHideAll), of(cmdShowAll), Layout::space()})}),
       of(lblInfo), Layout::row({Layout::space(), of(cmdDone), of(cmdCancel)})});
  lstDrives.ItemCheck += [this] { showStatus(); };
  onPress(cmdHideAll, [this] { lstDrives.setAllChecked(true); });
  onPress(cmdShowAll, [this] { lstDrives.setAllChecked(false); });
  onPress(cmdDone, [this] { cmdDone_Click(); });
  cmdCancel.Click += [this] {
    cancelled_ = true;
    close();
  };
}

void frmDrives::p_InitializeImageControl_B() {
  lstDrives.Clear();
  const auto names = driveNames();
  const DriveKinds kinds = driveKinds(session());
  for (std::size_t i = 0; i < kDriveCount; ++i) lstDrives.AddItem(names[i], kinds[i]);
}

Status frmDrives::p_HiddenDriveLetters() {
  session().trace.enter("[p_HiddenDriveLetters]");
  const Status status = readHiddenDrives(session(), shown_);
  for (std::size_t i = 0; i < kDriveCount; ++i) {
    lstDrives.setChecked(static_cast<int>(i), shown_.mask.isHidden(i));
  }
  return status;
}

void frmDrives::readMachine() {
  p_InitializeImageControl_B();
  noteRead(p_HiddenDriveLetters());
  showStatus();
}

DriveMask frmDrives::marked() const {
  DriveMask mask;
  for (std::size_t i = 0; i < kDriveCount; ++i) {
    mask.setHidden(i, lstDrives.isChecked(static_cast<int>(i)));
  }
  return mask;
}

int frmDrives::changesWaiting() const {
  if (cancelled_) return 0;
  const DriveMask mask = marked();
  int changes = 0;
  for (std::size_t i = 0; i < kDriveCount; ++i) {
    if (mask.isHidden(i) != shown_.mask.isHidden(i)) ++changes;
  }
  return changes;
}

void frmDrives::showStatus() {
  StatusText = fmt::format("{} of {} drives hidden", lstDrives.checkedItems().size(), kDriveCount);
}

bool frmDrives::p_UpdateNoDrives() {
  session().trace.enter("[p_UpdateNoDrives]");
  const DriveMask mask = marked();
  const bool written = engine::changeAtOnce(session(), "The list of hidden drives",
                                            [&] { return writeHiddenDrives(session(), mask); });
  if (!written) {
    // It may stand there and have failed to reach the disk.
    HiddenDrives now;
    if (readHiddenDrives(session(), now) == platform::ERROR_SUCCESS) shown_ = now;
    return true;
  }
  session().g_bRebootNeeded = true;
  shown_ = {true, {platform::REG_BINARY, mask.bytes()}, mask};
  return false;
}

bool frmDrives::isUnchanged() {
  HiddenDrives now;
  const Status status = readHiddenDrives(session(), now);
  if (status != platform::ERROR_SUCCESS) {
    tell(fmt::format("The hidden drives could not be read: {}.\r\nNothing was changed.",
                     platform::describeStatus(status)),
         platform::kIconExclamation);
    return false;
  }
  if (now.same(shown_)) return true;
  readAgain();
  tell("The hidden drives have been changed meanwhile. Please choose once more.");
  return false;
}

void frmDrives::cmdDone_Click() {
  session().trace.enter("[frmDrives_cmdDone]");
  // A value that is missing hides nothing: where nothing was ticked it is not made.
  const bool missing = !shown_.present && changesWaiting() == 0;
  const bool differs = !missing && !shown_.holds(marked());
  if (differs && (!isUnchanged() || p_UpdateNoDrives())) return;
  close();
}

}  // namespace korvex::dialogs
