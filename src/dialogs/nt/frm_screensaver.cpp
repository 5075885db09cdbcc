// Choosing the file, and writing the delay.
#include "dialogs/nt/frm_screensaver.h"

#include <fmt/format.h>

namespace korvex::dialogs {

using forms::Layout;

namespace {

constexpr std::uint32_t kShortest = 1;
constexpr std::uint32_t kLongest = 999;

// Windows takes either slash.
bool isOnAnotherComputer(std::string_view path) {
  return path.size() > 1 && path.substr(0, 2).find_first_not_of("\\/") == std::string_view::npos;
}

}  // namespace

frmScreensaver::frmScreensaver(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Logon Screen Saver", parts, engine::kNT),
      delay_(session(), txtDelay, "", [this] { txtDelay_Change(); }) {
  describe();
  arrange();
  onPress(cmdBrowse, [this] { cmdBrowse_Click(); });
  onPress(cmdNone, [this] { cmdNone_Click(); });
  onPress(cmdApply, [this] { cmdApply_Click(); });
  cmdDone.Click += [this] { close(); };
}

void frmScreensaver::describe() {
  txtScreensaver.ToolTipText = "What runs while nobody is logged on";
  txtScreensaver.WhatsThis =
      "The value SCRNSAVE.EXE of the key HKEY_USERS\\.DEFAULT\\Control Panel\\Desktop. It counts "
      "for the logon prompt alone: each user has a screen saver of their own.";
  txtPath.ToolTipText = "The screen saver's file as it stands in the registry";
  cmdBrowse.ToolTipText = "Choose another screen saver among the files of the machine";
  cmdNone.ToolTipText = "No screen saver while nobody is logged on";
  txtDelay.ToolTipText =
      "After how many seconds without a key or the mouse it starts...default is "
      "900";
  txtDelay.WhatsThis =
      "The value ScreenSaveTimeOut of the key HKEY_USERS\\.DEFAULT\\Control Panel\\Desktop.";
  cmdApply.ToolTipText = "Write the delay to the machine";
  cmdDone.ToolTipText = "Close this window";
}

void frmScreensaver::arrange() {
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {of(lblInfo),
       Layout::grid(2, {of(lblScreensaver), of(txtScreensaver), of(lblPath), of(txtPath)}),
       of(lblFile), Layout::row({of(cmdBrowse), of(cmdNone), Layout::space()}),
       Layout::row({of(lblDelay), of(txtDelay), of(cmdApply), Layout::space()}), Layout::space(),
       Layout::row({Layout::space(), of(cmdDone)})});
}

void frmScreensaver::readMachine() {
  session().trace.enter("[frmScreensaver.Load]");
  noteRead(readLogonScreenSaver(session(), shown_));
  validDelay_ = engine::numberIn(shown_.delay) ? shown_.delay : "";
  txtDelay.Text = shown_.delay;
  cmdApply.Enabled = false;
  showSaver();
}

void frmScreensaver::showSaver() {
  const bool none = shown_.path.empty();
  txtScreensaver.Text = none ? "(None)" : screenSaverName(shown_.path);
  txtPath.Text = shown_.path;
  cmdNone.Enabled = !none;
  const std::string found = findScreenSaver(session(), shown_.path);
  std::string text = "No screen saver runs at the logon prompt.";
  if (!none) text = found.empty() ? "This file is missing on the machine." : "The file is there.";
  if (!none && !shown_.active) {
    text += " Screen savers are switched off there (ScreenSaveActive is 0).";
  }
  lblFile.Caption = text;
}

// NumeralField has seen to it that the field holds digits only.
void frmScreensaver::txtDelay_Change() {
  const std::string text = txtDelay.Text;
  const auto number = delay_.number();
  // What stands there may be out of range, and may stay.
  const bool stands = text == shown_.delay;
  if (text.empty() || stands || (number && *number >= kShortest && *number <= kLongest)) {
    validDelay_ = text;
    cmdApply.Enabled = !text.empty() && text != shown_.delay;
    return;
  }
  txtDelay.Text = validDelay_;
  tell("The valid range is 1 - 999.");
}

void frmScreensaver::cmdBrowse_Click() {
  session().trace.enter("[frmScreensaver_cmdBrowse]");
  platform::FileRequest request;
  request.title = "Locate the new screen saver...";
  request.filter = "All Files (*.*)|*.*|SCR Files|*.scr";
  request.folder = session().g_sWinSysDir;
  const auto chosen = session().prompts().pickFile(request);
  if (!chosen || chosen->empty()) return;
  if (isOnAnotherComputer(*chosen)) {
    return tell(
        "UNC paths are not allowed for this feature.\r\n"
        "Either move the SCR file to the local drive or\r\n"
        "map the drive as a local letter.",
        platform::kIconCritical);
  }
  const bool written = engine::changeOrTell(
      session(),
      "An error occurred changing the screen saver.\r\n\r\n"
      "Try changing the screen saver again.",
      platform::kIconExclamation, [&] { return writeScreenSaverPath(session(), *chosen); });
  showWritten();
  if (written) tell("Logon screen saver successfully changed.");
}

void frmScreensaver::cmdNone_Click() {
  session().trace.enter("[frmScreensaver_cmdNone]");
  if (!askYesNo(fmt::format("No screen saver will run while nobody is logged on.\r\n"
                            "The present one is {}.\r\n\r\n"
                            "Do you wish to continue?",
                            shown_.path))) {
    return;
  }
  engine::changeAtOnce(session(), "The logon screen saver",
                       [this] { return writeScreenSaverPath(session(), ""); });
  showWritten();
}

void frmScreensaver::cmdApply_Click() {
  session().trace.enter("[frmScreensaver_cmdApply]");
  const std::string seconds = txtDelay.Text;
  const bool written = engine::changeAtOnce(session(), "The delay of the screen saver", [&] {
    return writeScreenSaverDelay(session(), seconds);
  });
  showWritten();
  if (written) StatusText = fmt::format("The delay is now {} seconds.", seconds);
}

void frmScreensaver::showWritten() {
  const std::string typed = txtDelay.Text;
  readAgain();
  if (!txtDelay.Enabled || typed == shown_.delay) return;
  txtDelay.Text = typed;
}

}  // namespace korvex::dialogs
