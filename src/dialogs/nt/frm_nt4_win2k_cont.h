// frmNT4_Win2KCont: what does not fit on the main window's NT4/Win2K page.
#pragma once

#include <cstdint>

#include "dialogs/tweak_dialog.h"
#include "platform/status.h"

namespace korvex::dialogs {

class frmNT4_Win2KCont : public TweakDialog {
 public:
  static constexpr const char* kName = "frmNT4_Win2KCont";

  explicit frmNT4_Win2KCont(const DialogParts& parts);

  forms::Frame frmEclectic{*this, "frmEclectic", "Eclectic Tweaks continued"};
  forms::Frame frmNetwork{*this, "frmNetwork", "Network Tweaks continued"};
  forms::Frame fraPerformance{*this, "fraPerformance", "Performance Tweaks continued"};
  forms::ComboBox cboErrBootPopUp{*this, "cboErrBootPopUp"};
  forms::Label lblErrBootPopUp{*this, "lblErrBootPopUp", "&Control Event Viewer pop-up errors",
                               &cboErrBootPopUp};

 protected:
  void readMore() override;
  int moreChanges() const override { return errPopUpChanged_ ? 1 : 0; }
  std::vector<std::string> applyMore() override;

 private:
  void p_DetermineErrPopUp();
  void cboErrBootPopUp_Click();
  platform::Status writeErrPopUp();

  std::int16_t errPopUp_ = 0;  // index of the entry
  bool errPopUpChanged_ = false;
};

}  // namespace korvex::dialogs
