// Asking, and the way back in for those who forgot.
#include "dialogs/logon/frm_login.h"

#include "engine/at_once.h"
#include "foundation/error_handler.h"

namespace korvex::dialogs {

using forms::Layout;
using Match = protection::ProgramPassword::Match;

namespace {

constexpr const char* kGranted = "TRUE";
constexpr const char* kGivenUp = "CANCEL";
constexpr const char* kNoPassword = "OFF";

}  // namespace

frmLogin::frmLogin(foundation::Session& session, protection::ProgramPassword& password)
    : Form(kName, "Korvex...for Power Users Login"), session_(session), password_(password) {
  txtPassword.ToolTipText = "The password of Korvex, or its reset code; case does not count";
  txtPassword.WhatsThis =
      "Korvex does not open on this machine without its password. Whoever has forgotten it types "
      "the reset code that was shown when it was set; the password is then taken away.";
  cmdOK.ToolTipText = "Open Korvex";
  cmdCancel.ToolTipText = "Leave; nothing is changed";
  layout =
      Layout::column({Layout::grid(2, {Layout::of(lblPassword), Layout::of(txtPassword)}),
                      Layout::row({Layout::space(), Layout::of(cmdOK), Layout::of(cmdCancel)})});
  cmdOK.Click +=
      [this] { foundation::guarded(session_, "frmLogin.cmdOK_Click", [this] { cmdOK_Click(); }); };
  cmdCancel.Click += [this] { close(); };
}

void frmLogin::Load() { session_.g_sLogin = kGivenUp; }

void frmLogin::cmdOK_Click() {
  const Match match = password_.check(txtPassword.Text.get());
  txtPassword.Text = "";
  // Where none is set by now, nothing is left to be asked.
  if (match == Match::None && password_.isSet()) {
    session_.prompts().messageBox("Invalid Password, try again!",
                                  platform::kButtonsOk | platform::kIconExclamation, "Login");
    return;
  }
  if (match == Match::ResetCode) takePasswordAway();
  session_.g_sLogin = kGranted;
  close();
}

void frmLogin::takePasswordAway() {
  if (engine::finishAtOnce(session_, "The password", password_.clear())) {
    engine::tell(session_, "The password has been removed. Anybody can open Korvex now.");
  }
}

bool ValidateKorvexSecurity(foundation::Session& session, forms::FormBook& formBook,
                            protection::ProgramPassword& password) {
  session.trace.enter("[ValidateKorvexSecurity]");
  if (!password.isSet()) {
    session.g_sLogin = kNoPassword;
    return true;
  }
  session.g_sLogin = kGivenUp;
  formBook.showModal(frmLogin::kName);
  session.trace.dump("g_sLogin$", session.g_sLogin);
  return session.g_sLogin == kGranted;
}

}  // namespace korvex::dialogs
