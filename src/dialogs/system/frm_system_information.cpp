// Reading and writing the two values.
#include "dialogs/system/frm_system_information.h"

namespace korvex::dialogs {

using forms::Layout;
using platform::HKEY_LOCAL_MACHINE;
using platform::Status;

namespace {

constexpr std::string_view kOwner = "RegisteredOwner";
constexpr std::string_view kOrganization = "RegisteredOrganization";

}  // namespace

frmSystemInformation::frmSystemInformation(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - System Information", parts) {
  txtUserName.ToolTipText = "To whom Windows is registered";
  txtCompany.ToolTipText = "The company to which Windows is registered";
  cmdApply.ToolTipText = "Write both to the machine";
  cmdDone.ToolTipText = "Close this window; what was not applied is discarded";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {of(lblInfo),
       Layout::grid(2, {of(lblUserName), of(txtUserName), of(lblCompany), of(txtCompany)}),
       Layout::space(), Layout::row({Layout::space(), of(cmdApply), of(cmdDone)})});
  for (forms::TextBox* box : {&txtUserName, &txtCompany}) {
    box->Change += [this] { cmdApply.Enabled = changesWaiting() > 0; };
  }
  onPress(cmdApply, [this] { cmdApply_Click(); });
  cmdDone.Click += [this] { close(); };
}

std::string_view frmSystemInformation::key() const {
  return session().g_bNT ? "Software\\Microsoft\\Windows NT\\CurrentVersion"
                         : "Software\\Microsoft\\Windows\\CurrentVersion";
}

void frmSystemInformation::p_DetermineID() {
  session().trace.enter("[p_DetermineID]");
  Status status = engine::storedText(session(), HKEY_LOCAL_MACHINE, key(), kOwner, l_sDefName_);
  if (status == platform::ERROR_SUCCESS) {
    status =
        engine::storedText(session(), HKEY_LOCAL_MACHINE, key(), kOrganization, l_sDefCompany_);
  }
  noteRead(status);
  session().trace.dump("sSubKey$", key());
  session().trace.dump("l_sDefName$", l_sDefName_);
  session().trace.dump("l_sDefCompany$", l_sDefCompany_);
  txtUserName.Text = l_sDefName_;
  txtCompany.Text = l_sDefCompany_;
  cmdApply.Enabled = false;
}

int frmSystemInformation::changesWaiting() const {
  return (txtUserName.Text.get() == l_sDefName_ ? 0 : 1) +
         (txtCompany.Text.get() == l_sDefCompany_ ? 0 : 1);
}

void frmSystemInformation::cmdApply_Click() {
  const bool done = engine::changeAtOnce(session(), "The owner of Windows", [this] {
    const Status status =
        engine::putText(session(), HKEY_LOCAL_MACHINE, key(), kOwner, txtUserName.Text);
    if (status != platform::ERROR_SUCCESS) return status;
    return engine::putText(session(), HKEY_LOCAL_MACHINE, key(), kOrganization, txtCompany.Text);
  });
  if (done) readAgain();
}

}  // namespace korvex::dialogs
