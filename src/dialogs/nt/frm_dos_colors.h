// frmDOSColors: the colors that command prompts of the current user begin with on Windows NT.
#pragma once

#include "dialogs/direct_dialog.h"
#include "dialogs/nt/console_colors.h"

namespace korvex::dialogs {

class frmDOSColors : public DirectDialog {
 public:
  static constexpr const char* kName = "frmDOSColors";

  explicit frmDOSColors(const DialogParts& parts);

  forms::ComboBox cboText{*this, "cboText"};
  forms::Label lblText{*this, "lblText", "&Text:", &cboText};
  forms::ComboBox cboBackground{*this, "cboBackground"};
  forms::Label lblBackground{*this, "lblBackground", "&Background:", &cboBackground};
  forms::Label lblSample{*this, "lblSample", ""};
  forms::CommandButton cmdApply{*this, "cmdApply", "&Apply", forms::CommandButton::Role::Default};
  forms::CommandButton cmdDefault{*this, "cmdDefault", "De&fault"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override { p_DetermineDOSColors(); }
  int changesWaiting() const override { return cmdApply.Enabled ? 1 : 0; }

 private:
  void describe();
  void p_DetermineDOSColors();
  void choose();
  void write(std::int32_t attribute);
  void cmdApply_Click();
  void cmdDefault_Click();
  ConsoleColors chosen() const;
  void showSample();
  void showStatus();

  PromptColors shown_;
};

}  // namespace korvex::dialogs
