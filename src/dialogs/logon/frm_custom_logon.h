// frmCustomLogon: the message that Windows shows before anybody logs on. It writes at once.
#pragma once

#include <string>

#include "dialogs/direct_dialog.h"

namespace korvex::dialogs {

class frmCustomLogon : public DirectDialog {
 public:
  static constexpr const char* kName = "frmCustomLogon";

  explicit frmCustomLogon(const DialogParts& parts);

  forms::TextBox txtLogonCaption{*this, "txtLogonCaption", {.widthInCharacters = 50}};
  forms::Label lblLogonCaption{*this, "lblLogonCaption",
                               "&Caption of the message:", &txtLogonCaption};
  forms::TextBox txtLogonMessage{
      *this, "txtLogonMessage", {.widthInCharacters = 50, .multiLine = true}};
  forms::Label lblLogonMessage{*this, "lblLogonMessage", "&Message:", &txtLogonMessage};
  forms::CommandButton cmdLogonMessageApply{*this, "cmdLogonMessageApply", "&Apply"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;
  int changesWaiting() const override;

 private:
  void p_NTLogonMessage();

  std::string caption_;  // as the machine has them
  std::string message_;
};

}  // namespace korvex::dialogs
