// What the fields show and the buttons do.
#include "dialogs/logon/frm_auto_logon.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace korvex::dialogs {

using forms::Layout;

frmAutoLogon::frmAutoLogon(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Automatic Logon", parts) {
  txtUserName.ToolTipText = "The user whom Windows logs on when it starts";
  txtPassword.ToolTipText = "The password of that user; the one of the machine stays unless typed";
  txtPassword.WhatsThis =
      "The password that the machine holds already stands in this field unseen. It stays as it is "
      "until another one is typed.";
  cmdApply.ToolTipText = "Switch automatic logon on for this user";
  cmdDisable.ToolTipText = "Switch automatic logon off; the user name and the password are emptied";
  cmdDone.ToolTipText = "Close this window; what was not applied is discarded";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {of(lblState),
       Layout::grid(2, {of(lblUserName), of(txtUserName), of(lblPassword), of(txtPassword)}),
       of(lblWarning), of(lblObstacles), Layout::space(),
       Layout::row({Layout::space(), of(cmdApply), of(cmdDisable), of(cmdDone)})});
  onPress(cmdApply, [this] { cmdApply_Click(); });
  onPress(cmdDisable, [this] {
    if (P_DisableAutoLogon(session())) readAgain();
  });
  cmdDone.Click += [this] { close(); };
}

void frmAutoLogon::readMachine() {
  read_ = {};
  noteRead(readAutoLogon(session(), read_));
  txtUserName.Text = read_.userName;
  txtPassword.Text = read_.password;
  lblState.Caption =
      read_.on ? fmt::format("Automatic logon is on for {}.",
                             read_.userName.empty() ? "nobody" : forms::captionOf(read_.userName))
               : "Automatic logon is off.";
  cmdDisable.Enabled = read_.on || !read_.password.empty();
  lblObstacles.Caption =
      forms::captionOf(fmt::format("{}", fmt::join(obstaclesTo(read_, session()), "\r\n")));
  lblObstacles.Visible = !lblObstacles.Caption->empty();
}

int frmAutoLogon::changesWaiting() const {
  return (txtUserName.Text.get() == read_.userName ? 0 : 1) +
         (txtPassword.Text.get() == read_.password ? 0 : 1);
}

void frmAutoLogon::cmdApply_Click() {
  const std::string userName = txtUserName.Text;
  if (userName.find_first_not_of(' ') == std::string::npos) {
    return tell("Type the name of the user whom Windows shall log on.");
  }
  if (enableAutoLogon(session(), userName, txtPassword.Text)) readAgain();
}

}  // namespace korvex::dialogs
