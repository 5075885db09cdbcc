// What this dialog has beyond its rows: which errors pop up at start, and buttons to others.
#include "dialogs/nt/frm_nt4_win2k_cont.h"

#include <fmt/format.h>

#include <array>

#include "engine/at_once.h"
#include "engine/raw_value.h"
#include "engine/readers.h"

namespace korvex::dialogs {

using engine::TweakState;
using forms::Layout;

namespace {

constexpr std::string_view kWindowsKey = "System\\CurrentControlSet\\Control\\Windows";
constexpr std::string_view kErrPopUpValue = "NoPopUpsOnBoot";
constexpr const char* kErrPopUpToolTip =
    "Which errors tell of themselves in a box...default is all of them";

constexpr std::array kErrPopUps{"All system & application errors popup (default)",
                                "Errors from system processes are suppressed.",
                                "All system & application errors are suppressed!"};

struct Placed {
  std::string_view frame;
  Opener opener;
};
constexpr std::string_view kEclectic = "Eclectic Tweaks continued";
constexpr std::string_view kNetwork = "Network Tweaks continued";
constexpr std::string_view kPerformance = "Performance Tweaks continued";
constexpr std::array kOpeners{
    Placed{kEclectic,
           {"cmdScreensaver", "Change default logon screen sa&ver",
            "Opens a window with the screen saver that runs while nobody is logged on",
            "frmScreensaver"}},
    Placed{kEclectic,
           {"cmdDOSBoxColors", "Set D&OS Box text and background colors",
            "Opens a window with the colors of the command prompt", "frmDOSColors"}},
    Placed{kNetwork,
           {"cmdExcludeProfileDirs", "Exclude profile dirs from &roaming profile",
            "Opens a window with the folders that do not roam", "frmExProfDirs"}},
    Placed{kNetwork,
           {"cmdMaxIPForward", "Adjust &TCP/IP forwarding buffer values",
            "Opens a window with the buffers for packets that are passed on", "frmNT_IPForward"}},
    Placed{kPerformance,
           {"cmdChangeDesktopHeap", "Adjust the size of the Desktop &heap",
            "Opens a window with the memory that the windows of a desktop share", "frmNTHeapSize"}},
};

}  // namespace

frmNT4_Win2KCont::frmNT4_Win2KCont(const DialogParts& parts)
    : TweakDialog(kName, "Korvex...for Power Users - NT4/Win2K continued",
                  engine::Bank::NT4_Win2KCont, parts) {
  for (const char* entry : kErrPopUps) cboErrBootPopUp.AddItem(entry);
  cboErrBootPopUp.WhatsThis = fmt::format(
      "Sets the value {} of the key HKEY_LOCAL_MACHINE\\{} to DWORD 0, 1 or 2, in the order of the "
      "list.",
      kErrPopUpValue, kWindowsKey);
  addTo(kEclectic, Layout::column({Layout::of(lblErrBootPopUp), Layout::of(cboErrBootPopUp)}));
  for (const Placed& placed : kOpeners) addOpener(placed.frame, placed.opener);
  for (forms::Frame* frame : {&frmEclectic, &frmNetwork, &fraPerformance}) enclose(*frame);
  cboErrBootPopUp.Click +=
      [this] { trap("cboErrBootPopUp_Click", [this] { cboErrBootPopUp_Click(); }); };
}

void frmNT4_Win2KCont::readMore() {
  errPopUpChanged_ = false;
  cboErrBootPopUp.ToolTipText = kErrPopUpToolTip;
  lblErrBootPopUp.ToolTipText = kErrPopUpToolTip;
  const TweakState state =
      engine::availability({.property = {}, .families = engine::kNT}, session());
  if (state.kind != TweakState::Kind::Unavailable) return p_DetermineErrPopUp();
  // The windows that the buttons open are NT's too.
  std::vector<forms::Control*> none{&cboErrBootPopUp, &lblErrBootPopUp};
  for (const Placed& placed : kOpeners) none.push_back(find(placed.opener.name));
  for (forms::Control* control : none) {
    if (control == nullptr) continue;
    control->Enabled = false;
    control->ToolTipText = std::string(state.reason);
  }
}

void frmNT4_Win2KCont::p_DetermineErrPopUp() {
  session().trace.enter("[p_DetermineErrPopUp]");
  engine::RawValue value;
  const platform::Status status = engine::readRawValue(
      session().registry(), platform::HKEY_LOCAL_MACHINE, kWindowsKey, kErrPopUpValue, value);
  session().trace.dump("lRetVal&", status);
  // A value that is none of the entries selects none of them.
  const int index = status == platform::ERROR_FILE_NOT_FOUND ? 0 : value.number(-1);
  const bool known = index >= 0 && index < cboErrBootPopUp.ListCount();
  errPopUp_ = static_cast<std::int16_t>(known ? index : -1);
  cboErrBootPopUp.ListIndex = errPopUp_;
}

void frmNT4_Win2KCont::cboErrBootPopUp_Click() {
  if (session().g_bNoRecord || cboErrBootPopUp.ListIndex < 0) return;
  errPopUp_ = static_cast<std::int16_t>(cboErrBootPopUp.ListIndex.get());
  errPopUpChanged_ = true;
  edited();
}

platform::Status frmNT4_Win2KCont::writeErrPopUp() {
  platform::RegistryChange change(session().registry());
  platform::Status status = change.status();
  if (status == platform::ERROR_SUCCESS) {
    status = engine::putValue(session(), platform::HKEY_LOCAL_MACHINE, kWindowsKey, kErrPopUpValue,
                              errPopUp_);
  }
  if (status == platform::ERROR_SUCCESS) status = change.commit();
  session().trace.dump("lRetVal&", status);
  return status;
}

std::vector<std::string> frmNT4_Win2KCont::applyMore() {
  if (!errPopUpChanged_) return {};
  const platform::Status status = writeErrPopUp();
  errPopUpChanged_ = status != platform::ERROR_SUCCESS;
  if (!errPopUpChanged_) return {};
  return {fmt::format("{} could not be changed and is still waiting: {}.",
                      lblErrBootPopUp.accessibleName(), platform::describeStatus(status))};
}

}  // namespace korvex::dialogs
