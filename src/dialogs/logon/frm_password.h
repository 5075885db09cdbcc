// frmPassword: sets, changes and takes away Korvex's own password.
#pragma once

#include <string>

#include "forms/form.h"
#include "foundation/session.h"
#include "protection/program_password.h"

namespace korvex::dialogs {

class frmPassword : public forms::Form {
 public:
  static constexpr const char* kName = "frmPassword";

  frmPassword(foundation::Session& session, protection::ProgramPassword& password);

  void Load() override;
  bool reloadsToShow() const override { return true; }

  forms::Label lblState{*this, "lblState", ""};
  forms::TextBox txtPresent{*this, "txtPresent", {.maxLength = 255, .password = true}};
  forms::Label lblPresent{*this, "lblPresent", "&Present password:", &txtPresent};
  forms::TextBox txtNew{*this, "txtNew", {.maxLength = 255, .password = true}};
  forms::Label lblNew{*this, "lblNew", "&New password:", &txtNew};
  forms::TextBox txtRepeat{*this, "txtRepeat", {.maxLength = 255, .password = true}};
  forms::Label lblRepeat{*this, "lblRepeat", "Once &more:", &txtRepeat};
  forms::Label lblCase{*this, "lblCase", "Upper and lower case do not count."};
  forms::CommandButton cmdSet{*this, "cmdSet", "&Set", forms::CommandButton::Role::Default};
  forms::CommandButton cmdClear{*this, "cmdClear", "&Remove"};
  forms::CommandButton cmdCancel{*this, "cmdCancel", "&Cancel", forms::CommandButton::Role::Cancel};

 private:
  void cmdSet_Click();
  void cmdClear_Click();
  // Whether the present password was typed, where there is one; tells where it was not.
  bool mayChange();

  foundation::Session& session_;
  protection::ProgramPassword& password_;
};

}  // namespace korvex::dialogs
