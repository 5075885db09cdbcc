// frmNTServer: what a server is to the others of its network.
#pragma once

#include "dialogs/tweak_dialog.h"

namespace korvex::dialogs {

class frmNTServer : public TweakDialog {
 public:
  static constexpr const char* kName = "frmNTServer";

  explicit frmNTServer(const DialogParts& parts);

  forms::Frame fraServerTweaks{*this, "fraServerTweaks", "Server Tweaks"};

 protected:
  // The ports of every LPR printer change: that is asked for.
  bool accepts(const engine::Tweak& tweak, const forms::CheckBox& box) override;
};

}  // namespace korvex::dialogs
