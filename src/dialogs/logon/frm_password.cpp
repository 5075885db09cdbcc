// Setting and taking away.
#include "dialogs/logon/frm_password.h"

#include <fmt/format.h>

#include "engine/at_once.h"
#include "foundation/error_handler.h"
#include "platform/text/text.h"

namespace korvex::dialogs {

using forms::Layout;
using protection::ProgramPassword;

frmPassword::frmPassword(foundation::Session& session, ProgramPassword& password)
    : Form(kName, "Korvex...for Power Users - Password"), session_(session), password_(password) {
  txtPresent.ToolTipText = "The password as it is now";
  txtNew.ToolTipText = "The password that Korvex asks for from now on";
  txtRepeat.ToolTipText = "The same once more: what is typed cannot be seen";
  cmdSet.ToolTipText = "Set the new password";
  cmdClear.ToolTipText = "Take the password away: anybody can open Korvex then";
  cmdCancel.ToolTipText = "Close this window; nothing is changed";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout =
      Layout::column({of(lblState),
                      Layout::grid(2, {of(lblPresent), of(txtPresent), of(lblNew), of(txtNew),
                                       of(lblRepeat), of(txtRepeat)}),
                      of(lblCase), Layout::space(),
                      Layout::row({Layout::space(), of(cmdSet), of(cmdClear), of(cmdCancel)})});
  cmdSet.Click += [this] {
    foundation::guarded(session_, "frmPassword.cmdSet_Click", [this] { cmdSet_Click(); });
  };
  cmdClear.Click += [this] {
    foundation::guarded(session_, "frmPassword.cmdClear_Click", [this] { cmdClear_Click(); });
  };
  cmdCancel.Click += [this] { close(); };
}

void frmPassword::Load() {
  const bool isSet = password_.isSet();
  lblState.Caption = isSet ? "Korvex asks for a password on this machine."
                           : "Korvex asks for no password on this machine.";
  for (forms::Control* control :
       {static_cast<forms::Control*>(&lblPresent), static_cast<forms::Control*>(&txtPresent),
        static_cast<forms::Control*>(&cmdClear)}) {
    control->Enabled = isSet;
  }
}

bool frmPassword::mayChange() {
  if (!password_.isSet()) return true;
  if (password_.check(txtPresent.Text.get()) != ProgramPassword::Match::None) return true;
  txtPresent.Text = "";
  session_.prompts().messageBox("Invalid Password, try again!",
                                platform::kButtonsOk | platform::kIconExclamation, "Login");
  return false;
}

void frmPassword::cmdSet_Click() {
  const std::string wanted = txtNew.Text;
  if (wanted.empty()) {
    return engine::tell(session_, "Type the new password, twice.", platform::kIconExclamation);
  }
  if (!platform::sameName(wanted, txtRepeat.Text.get())) {
    txtRepeat.Text = "";
    return engine::tell(session_,
                        "The two passwords differ. Type the new password once more in both fields.",
                        platform::kIconExclamation);
  }
  if (!mayChange()) return;
  std::string code;
  if (!engine::finishAtOnce(session_, "The password", password_.set(wanted, code))) return;
  engine::tell(session_,
               fmt::format("The password is set. Korvex asks for it when it opens.\r\n\r\n"
                           "Keep this reset code in a safe place: {}\r\n"
                           "Typed in the password's place it takes the password away.",
                           code));
  close();
}

void frmPassword::cmdClear_Click() {
  if (!mayChange()) return;
  if (!engine::finishAtOnce(session_, "The password", password_.clear())) return;
  engine::tell(session_, "The password has been removed. Anybody can open Korvex now.");
  close();
}

}  // namespace korvex::dialogs
