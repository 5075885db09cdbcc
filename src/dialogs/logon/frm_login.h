// frmLogin: asks for Korvex's own password. The answer is the session's g_sLogin: "TRUE" for the
// password or the reset code, "CANCEL" for a person who gave up.
#pragma once

#include "forms/form.h"
#include "forms/form_book.h"
#include "foundation/session.h"
#include "protection/program_password.h"

namespace korvex::dialogs {

class frmLogin : public forms::Form {
 public:
  static constexpr const char* kName = "frmLogin";

  frmLogin(foundation::Session& session, protection::ProgramPassword& password);

  void Load() override;

  forms::TextBox txtPassword{*this, "txtPassword", {.maxLength = 255, .password = true}};
  forms::Label lblPassword{*this, "lblPassword", "&Password:", &txtPassword};
  forms::CommandButton cmdOK{*this, "cmdOK", "OK", forms::CommandButton::Role::Default};
  forms::CommandButton cmdCancel{*this, "cmdCancel", "Cancel", forms::CommandButton::Role::Cancel};

 private:
  void cmdOK_Click();
  void takePasswordAway();

  foundation::Session& session_;
  protection::ProgramPassword& password_;
};

// Asks where a password is set. False where the person may not go on. Without a password the
// answer is "OFF".
bool ValidateKorvexSecurity(foundation::Session& session, forms::FormBook& formBook,
                            protection::ProgramPassword& password);

}  // namespace korvex::dialogs
