// frmIETitleBar: the text that Internet Explorer shows in its title bar, behind the page's title.
#pragma once

#include <string>

#include "dialogs/direct_dialog.h"

namespace korvex::dialogs {

class frmIETitleBar : public DirectDialog {
 public:
  static constexpr const char* kName = "frmIETitleBar";

  explicit frmIETitleBar(const DialogParts& parts);

  forms::TextBox txtTitle{*this, "txtTitle", {.maxLength = 255, .widthInCharacters = 50}};
  forms::Label lblTitle{*this, "lblTitle", "&Title:", &txtTitle};
  forms::Label lblLooks{*this, "lblLooks", "It will look like this:"};
  forms::Label lblExample{*this, "lblExample", ""};
  forms::CommandButton cmdDefault{*this, "cmdDefault", "De&fault"};
  forms::CommandButton cmdApply{*this, "cmdApply", "&Apply"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override { p_DetermineIETitle(); }
  int changesWaiting() const override { return txtTitle.Text.get() == shown_ ? 0 : 1; }

 private:
  void p_DetermineIETitle();
  void cmdApply_Click();
  void showExample();

  std::string shown_;  // as it was read
};

}  // namespace korvex::dialogs
