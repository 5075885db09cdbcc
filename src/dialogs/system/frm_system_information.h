// frmSystemInformation: to whom Windows is registered. It writes at once.
#pragma once

#include <string>

#include "dialogs/direct_dialog.h"

namespace korvex::dialogs {

class frmSystemInformation : public DirectDialog {
 public:
  static constexpr const char* kName = "frmSystemInformation";

  explicit frmSystemInformation(const DialogParts& parts);

  forms::Label lblInfo{*this, "lblInfo", "Change System owner and company ID information."};
  forms::TextBox txtUserName{*this, "txtUserName", {.widthInCharacters = 40}};
  forms::Label lblUserName{*this, "lblUserName", "&Owner:", &txtUserName};
  forms::TextBox txtCompany{*this, "txtCompany", {.widthInCharacters = 40}};
  forms::Label lblCompany{*this, "lblCompany", "&Company:", &txtCompany};
  forms::CommandButton cmdApply{*this, "cmdApply", "&Apply", forms::CommandButton::Role::Default};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override { p_DetermineID(); }
  int changesWaiting() const override;

 private:
  void p_DetermineID();
  void cmdApply_Click();
  std::string_view key() const;

  std::string l_sDefName_;  // as the machine has them
  std::string l_sDefCompany_;
};

}  // namespace korvex::dialogs
