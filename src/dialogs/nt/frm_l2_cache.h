// frmL2Cache: the size of the second-level cache that Windows NT assumes.
#pragma once

#include "dialogs/direct_dialog.h"

namespace korvex::dialogs {

class frmL2Cache : public DirectDialog {
 public:
  static constexpr const char* kName = "frmL2Cache";

  explicit frmL2Cache(const DialogParts& parts);

  forms::Label lblInfo{
      *this, "lblInfo",
      "It is possible that your HAL (Hardware Abstraction Layer) does not recognize the amount of "
      "L2 cache you have on the motherboard. If it does not, it will default to 256K."};
  forms::Label lblPrompt{
      *this, "lblPrompt",
      "In order to force HAL to always recognize the amount of L2 cache on the system enter the "
      "amount of L2 cache this system has below:"};
  forms::Label lblCurrent{*this, "lblCurrent", ""};
  forms::ComboBox cboL2Cache{*this, "cboL2Cache", forms::ComboBox::Style::DropDown};
  forms::Label lblL2Cache{*this, "lblL2Cache", "&L2 cache in KB:", &cboL2Cache};
  forms::CommandButton cmdL2Apply{*this, "cmdL2Apply", "&Apply"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;
  int changesWaiting() const override { return cboL2Cache.Text.get() == shown_ ? 0 : 1; }

 private:
  void cmdL2Apply_Click();

  std::string shown_;
};

}  // namespace korvex::dialogs
