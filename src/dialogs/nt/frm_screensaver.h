// frmScreensaver: the screen saver that runs while nobody is logged on, and after how long. Each is
// written at once.
#pragma once

#include <string>

#include "dialogs/direct_dialog.h"
#include "dialogs/nt/screen_savers.h"
#include "engine/numeral_field.h"

namespace korvex::dialogs {

class frmScreensaver : public DirectDialog {
 public:
  static constexpr const char* kName = "frmScreensaver";

  explicit frmScreensaver(const DialogParts& parts);

  forms::Label lblInfo{*this, "lblInfo",
                       "To change the default screen saver browse to the folder containing the new "
                       "screen saver and select it.\r\n"
                       "Screen saver files have a SCR extension."};
  forms::TextBox txtScreensaver{
      *this, "txtScreensaver", {.widthInCharacters = 28, .readOnly = true}};
  forms::Label lblScreensaver{*this, "lblScreensaver", "&Present screen saver:", &txtScreensaver};
  forms::TextBox txtPath{*this, "txtPath", {.widthInCharacters = 40, .readOnly = true}};
  forms::Label lblPath{*this, "lblPath", "&File:", &txtPath};
  forms::Label lblFile{*this, "lblFile", ""};
  forms::CommandButton cmdBrowse{*this, "cmdBrowse", "&Browse..."};
  forms::CommandButton cmdNone{*this, "cmdNone", "&None"};
  forms::TextBox txtDelay{*this, "txtDelay", {.widthInCharacters = 6}};
  forms::Label lblDelay{*this, "lblDelay", "D&elay in seconds (1 - 999):", &txtDelay};
  forms::CommandButton cmdApply{*this, "cmdApply", "&Apply", forms::CommandButton::Role::Default};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;
  int changesWaiting() const override { return cmdApply.Enabled ? 1 : 0; }

 private:
  void describe();
  void arrange();
  void showSaver();
  void txtDelay_Change();
  void cmdBrowse_Click();
  void cmdNone_Click();
  void cmdApply_Click();
  // Shows what stands there by now; what is typed as delay and not written stays typed.
  void showWritten();

  LogonScreenSaver shown_;
  std::string validDelay_;  // the last that the field took
  engine::NumeralField delay_;
};

}  // namespace korvex::dialogs
