// frmAutoLogon: has Windows log a user on by itself. It writes at once.
#pragma once

#include "dialogs/direct_dialog.h"
#include "dialogs/logon/auto_logon.h"

namespace korvex::dialogs {

class frmAutoLogon : public DirectDialog {
 public:
  static constexpr const char* kName = "frmAutoLogon";

  explicit frmAutoLogon(const DialogParts& parts);

  forms::Label lblState{*this, "lblState", ""};
  forms::TextBox txtUserName{*this, "txtUserName", {.widthInCharacters = 30}};
  forms::Label lblUserName{*this, "lblUserName", "&User name:", &txtUserName};
  // The password of the machine stands in it unseen, so that it stays where nobody types another.
  forms::TextBox txtPassword{*this, "txtPassword", {.widthInCharacters = 30, .password = true}};
  forms::Label lblPassword{*this, "lblPassword", "&Password:", &txtPassword};
  forms::Label lblWarning{*this, "lblWarning",
                          "The password stands readable in the registry: whoever can read the "
                          "registry of this machine, or its files, can read the password."};
  forms::Label lblObstacles{*this, "lblObstacles", ""};
  forms::CommandButton cmdApply{*this, "cmdApply", "&Apply", forms::CommandButton::Role::Default};
  forms::CommandButton cmdDisable{*this, "cmdDisable", "&Switch off"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;
  int changesWaiting() const override;

 private:
  void cmdApply_Click();

  AutoLogon read_;
};

}  // namespace korvex::dialogs
