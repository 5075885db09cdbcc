// frmMoreSecurity: the restrictions that do not fit on the main window's Security page.
#pragma once

#include "dialogs/tweak_dialog.h"

namespace korvex::dialogs {

class frmMoreSecurity : public TweakDialog {
 public:
  static constexpr const char* kName = "frmMoreSecurity";

  explicit frmMoreSecurity(const DialogParts& parts);

  forms::Frame fraWin9x{*this, "fraWin9x", "Windows 9x specific"};
  forms::Frame fraExplorer{*this, "fraExplorer", "Internet Explorer 4.x SP2 and higher specific"};

 protected:
  // The help file can only be replaced where its substitute is.
  bool accepts(const engine::Tweak& tweak, const forms::CheckBox& box) override;
};

}  // namespace korvex::dialogs
