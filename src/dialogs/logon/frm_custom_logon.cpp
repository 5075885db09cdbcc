// Reading and writing the message.
#include "dialogs/logon/frm_custom_logon.h"

namespace korvex::dialogs {

using forms::Layout;
using platform::HKEY_LOCAL_MACHINE;
using platform::Status;

namespace {

// On Windows 95, 98 and Me too.
constexpr std::string_view kWinlogon = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
constexpr std::string_view kCaption = "LegalNoticeCaption";
constexpr std::string_view kText = "LegalNoticeText";

// Every line break as Windows writes it, however it was typed.
std::string withCrLf(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    const bool isBreak = text[i] == '\n' || text[i] == '\r';
    result += isBreak ? foundation::kCrLf : text.substr(i, 1);
  }
  return result;
}

}  // namespace

frmCustomLogon::frmCustomLogon(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Custom Logon", parts) {
  txtLogonCaption.ToolTipText = "The title of the box that is shown before anybody logs on";
  txtLogonMessage.ToolTipText = "What stands in that box; leave both fields empty for no message";
  cmdLogonMessageApply.ToolTipText = "Write the message to the machine, or clear it";
  cmdLogonMessageApply.WhatsThis =
      "The message is written to the Winlogon key of Windows NT, on every system.";
  cmdDone.ToolTipText = "Close this window; what was not applied is discarded";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column({of(lblLogonCaption), of(txtLogonCaption), of(lblLogonMessage),
                           of(txtLogonMessage),
                           Layout::row({Layout::space(), of(cmdLogonMessageApply), of(cmdDone)})});
  onPress(cmdLogonMessageApply, [this] { p_NTLogonMessage(); });
  cmdDone.Click += [this] { close(); };
}

void frmCustomLogon::readMachine() {
  Status status = engine::storedText(session(), HKEY_LOCAL_MACHINE, kWinlogon, kCaption, caption_);
  if (status == platform::ERROR_SUCCESS) {
    status = engine::storedText(session(), HKEY_LOCAL_MACHINE, kWinlogon, kText, message_);
  }
  noteRead(status);
  txtLogonCaption.Text = caption_;
  txtLogonMessage.Text = message_;
  if (!session().g_bNT) StatusText = "Written to the Winlogon key of Windows NT.";
}

int frmCustomLogon::changesWaiting() const {
  return (txtLogonCaption.Text.get() == caption_ ? 0 : 1) +
         (txtLogonMessage.Text.get() == message_ ? 0 : 1);
}

void frmCustomLogon::p_NTLogonMessage() {
  session().trace.enter("[p_NTLogonMessage]");
  const std::string caption = txtLogonCaption.Text;
  const std::string typed = txtLogonMessage.Text;
  const std::string message = typed == message_ ? typed : withCrLf(typed);
  const bool done = engine::changeAtOnce(session(), "The message before logon", [&] {
    const Status status =
        engine::putText(session(), HKEY_LOCAL_MACHINE, kWinlogon, kCaption, caption);
    if (status != platform::ERROR_SUCCESS) return status;
    return engine::putText(session(), HKEY_LOCAL_MACHINE, kWinlogon, kText, message);
  });
  if (!done) return;
  readAgain();
  tell(caption.empty() && message.empty()
           ? "Your custom message has been cleared from the system."
           : "Your custom message has been written to the registry.");
}

}  // namespace korvex::dialogs
