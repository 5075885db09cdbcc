// frmDrives: the drives that Explorer hides from the current user. Written when the window closes
// by "Done"; with "Cancel" nothing is.
#pragma once

#include "dialogs/direct_dialog.h"
#include "dialogs/shell/drive_mask.h"

namespace korvex::dialogs {

class frmDrives : public DirectDialog {
 public:
  static constexpr const char* kName = "frmDrives";

  explicit frmDrives(const DialogParts& parts);

  forms::CheckList lstDrives{*this, "lstDrives", 13};
  forms::Label lblDrives{*this, "lblDrives", "&Hidden drives", &lstDrives};
  forms::Label lblInfo{*this, "lblInfo",
                       "A hidden drive is missing in My Computer and in Explorer.\r\n"
                       "It is not locked: programs and the Run box still reach it."};
  forms::CommandButton cmdHideAll{*this, "cmdHideAll", "Hide &all"};
  forms::CommandButton cmdShowAll{*this, "cmdShowAll", "&Show all"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Default};
  forms::CommandButton cmdCancel{*this, "cmdCancel", "&Cancel", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;
  int changesWaiting() const override;

 private:
  void p_InitializeImageControl_B();
  platform::Status p_HiddenDriveLetters();
  // True: it failed, and the person was told.
  bool p_UpdateNoDrives();
  void cmdDone_Click();
  // Whether it may be written over; told where it may not.
  bool isUnchanged();
  void showStatus();
  DriveMask marked() const;

  HiddenDrives shown_;
  bool cancelled_ = false;  // by its button: there is nothing to ask
};

}  // namespace korvex::dialogs
