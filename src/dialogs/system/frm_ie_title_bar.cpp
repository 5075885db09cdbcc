// Reading the title, showing how it will look, and writing it.
#include "dialogs/system/frm_ie_title_bar.h"

#include <fmt/format.h>

#include "engine/tweak.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using engine::HKCU;
using engine::HKLM;
using forms::Layout;
using platform::ERROR_SUCCESS;
using platform::Status;

namespace {

constexpr std::string_view kMain = "Software\\Microsoft\\Internet Explorer\\Main";
constexpr std::string_view kWindowTitle = "Window Title";
constexpr const char* kStandard = "Microsoft Internet Explorer";
constexpr const char* kNeedsBrowser = "Needs Internet Explorer 3 or later.";
constexpr int kFirstBrowser = 3;
constexpr std::size_t kLongestExample = 60;  // bytes; the window is not to grow with the text

std::string shortened(std::string text) {
  if (text.size() <= kLongestExample) return text;
  std::size_t end = kLongestExample;
  while ((static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;  // within a character
  return text.substr(0, end) + "...";
}

// Without a text of its own the browser shows its own one.
bool isStandard(std::string_view title) {
  return platform::trimmed(title).empty() || title == kStandard;
}

}  // namespace

frmIETitleBar::frmIETitleBar(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Internet Explorer title bar", parts) {
  txtTitle.ToolTipText = "The text behind the title of each page";
  txtTitle.WhatsThis =
      "It is the value \"Window Title\" of the key Software\\Microsoft\\Internet Explorer\\Main, "
      "under HKEY_LOCAL_MACHINE and HKEY_CURRENT_USER. An empty text and the standard one delete "
      "the value, so that the browser shows its own.";
  lblExample.AccessibleName = "Example";
  cmdDefault.ToolTipText = "Puts the standard title in the field";
  cmdApply.ToolTipText = "Writes the title, for the machine and for this user";
  cmdDone.ToolTipText = "Close this window";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout =
      Layout::column({Layout::row({of(lblTitle), of(txtTitle), of(cmdDefault)}), of(lblLooks),
                      of(lblExample), Layout::row({Layout::space(), of(cmdApply), of(cmdDone)})});
  txtTitle.Change += [this] { showExample(); };
  onPress(cmdDefault, [this] { txtTitle.Text = kStandard; });
  onPress(cmdApply, [this] { cmdApply_Click(); });
  cmdDone.Click += [this] { close(); };
}

void frmIETitleBar::p_DetermineIETitle() {
  session().trace.enter("[p_DetermineIETitle]");
  StatusText = "";
  std::string ofUser;
  noteRead(engine::storedText(session(), HKLM, kMain, kWindowTitle, shown_));
  noteRead(engine::storedText(session(), HKCU, kMain, kWindowTitle, ofUser));
  txtTitle.Text = shown_;
  showExample();
  if (!ofUser.empty() && ofUser != shown_) {
    StatusText = "This user has a title of their own: " + shortened(ofUser);
  }
  if (session().g_iExplrVer < kFirstBrowser) noteProblem(kNeedsBrowser);
}

void frmIETitleBar::showExample() {
  const std::string& title = txtTitle.Text.get();
  lblExample.Caption = forms::captionOf(
      fmt::format("Page title - {}", isStandard(title) ? kStandard : shortened(title)));
}

void frmIETitleBar::cmdApply_Click() {
  session().trace.enter("[frmIETitleBar_cmdApply]");
  const std::string title = txtTitle.Text.get();
  const bool standard = isStandard(title);
  const bool done = engine::changeAtOnce(session(), "The browser's title", [&] {
    const auto write = [&](engine::Root root) {
      return standard ? engine::dropValue(session(), root, kMain, kWindowTitle)
                      : engine::putText(session(), root, kMain, kWindowTitle, title);
    };
    const Status status = write(HKLM);
    return status == ERROR_SUCCESS ? write(HKCU) : status;
  });
  if (!done) return;
  readAgain();
  StatusText = standard ? "The browser shows its own title." : "The title has been written.";
}

}  // namespace korvex::dialogs
