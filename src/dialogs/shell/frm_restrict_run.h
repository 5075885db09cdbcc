// frmRestrictRun: the only programs that the current user may start. The policy is written when the
// window closes, as one change, where something of it was changed.
#pragma once

#include <string>
#include <vector>

#include "dialogs/direct_dialog.h"
#include "dialogs/logon/frm_logon_bitmap.h"
#include "dialogs/shell/restricted_programs.h"

namespace korvex::dialogs {

class frmRestrictRun : public DirectDialog {
 public:
  static constexpr const char* kName = "frmRestrictRun";

  // The desk is where the window that asks for a program leaves its name.
  frmRestrictRun(const DialogParts& parts, LogonBitmapDesk& desk);

  bool QueryUnload() override;

  forms::CheckBox chkRestrictRun{*this, "chkRestrictRun", "&Run only allowed Windows applications"};
  forms::Label lblWarning{
      *this, "lblWarning",
      "When this option is enabled ONLY the aplications listed here will be able to run.\r\n"
      "Make certain you understand the implications of this before enabling this option."};
  forms::Label lblHint{*this, "lblHint",
                       "For more information drop the "
                       "question mark"
                       " on this checkbox."};
  forms::MultiList lstAllowed{*this, "lstAllowed", 10};
  forms::Label lblAllowed{*this, "lblAllowed", "Allowed &applications", &lstAllowed};
  forms::CommandButton cmdAdd{*this, "cmdAdd", "A&dd..."};
  forms::CommandButton cmdRemove{*this, "cmdRemove", "Re&move"};
  forms::CommandButton cmdFormer{*this, "cmdFormer", "&Former list"};
  forms::CommandButton cmdDone{*this, "cmdDone", "D&one", forms::CommandButton::Role::Default};
  forms::CommandButton cmdCancel{*this, "cmdCancel", "&Cancel", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;
  int changesWaiting() const override;

 private:
  // What the person was asked about the two programs that should be able to run.
  struct Warning {
    bool asked = false;
    bool agreed = false;  // to their being restricted
  };

  void describe();
  void arrange();
  platform::Status p_DetermineAllowedApps();
  void cmdAdd_Click();
  void cmdRemove_Click();
  void cmdFormer_Click();
  void showWhatCanBeDone();

  RestrictedPrograms wanted() const;
  bool write();
  bool isUnchanged();
  // Adds Korvex and Systray where the person does not want to go without them.
  Warning warn(RestrictedPrograms& programs) const;
  platform::Status record(const Warning& warning, bool switchedOff);

  LogonBitmapDesk& desk_;
  RestrictedPrograms shown_;
  std::vector<std::string> former_;
  platform::Status status_ = platform::ERROR_SUCCESS;  // of reading the policy
  bool cancelled_ = false;
};

}  // namespace korvex::dialogs
