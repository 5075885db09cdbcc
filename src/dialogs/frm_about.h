// frmAbout: what Korvex is, which one this is, and on which machine it works.
#pragma once

#include "forms/form.h"
#include "foundation/session.h"

namespace korvex::dialogs {

class frmAbout : public forms::Form {
 public:
  static constexpr const char* kName = "frmAbout";

  explicit frmAbout(foundation::Session& session);
  void Load() override;

  forms::Label lblProgram{*this, "lblProgram", "Korvex...for Power Users"};
  forms::Label lblVersion{*this, "lblVersion", ""};
  forms::Label lblPurpose{*this, "lblPurpose", ""};
  forms::Label lblMachine{*this, "lblMachine", ""};
  forms::Label lblUser{*this, "lblUser", ""};
  forms::Label lblFolder{*this, "lblFolder", ""};
  forms::Label lblSettings{*this, "lblSettings", "Settings: HKEY_LOCAL_MACHINE\\SOFTWARE\\Korvex"};
  forms::Label lblLog{*this, "lblLog", ""};
  forms::Label lblLicence{*this, "lblLicence", "Free software under the MIT licence."};
  forms::CommandButton cmdOK{*this, "cmdOK", "OK", forms::CommandButton::Role::Cancel};

 private:
  foundation::Session& session_;
};

}  // namespace korvex::dialogs
