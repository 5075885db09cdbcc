// Editing the boot file, and listing the driver groups.
#include "dialogs/nt/frm_nt_debug.h"

#include <fmt/format.h>

#include <array>

#include "engine/raw_value.h"
#include "engine/readers.h"

namespace korvex::dialogs {

using forms::Layout;
using foundation::kCrLf;
using namespace platform;

namespace {

constexpr std::string_view kNoBootIni =
    "This information is valid in Windows NT or Windows NT/Other OS dual boot setup only.";
constexpr std::string_view kGroupOrder = "SYSTEM\\CurrentControlSet\\Control\\ServiceGroupOrder";
constexpr std::string_view kSavedName = "Driver Load Order.txt";

// A switch of boot.ini: its label, its description, and a line that has it.
struct Switch {
  const char* name;
  const char* text;
  const char* example;
};
constexpr std::array kSwitches{
    Switch{"lblBaseVideo", "/BASEVIDEO                   Uses standard VGA drivers",
           "/basevideo /sos"},
    Switch{"lblSOS", "/SOS                                Lists names of drivers as they load",
           "/sos"},
    Switch{"lblNoSerialMice",
           "/NoSerialMice                  Disables mouse detection of all or certain ports",
           "/NoSerialMice"},
    Switch{"lblNoserialMiceCOM",
           "/NoSerialMice=COMx      Disables mouse detection on specific COM port",
           "/NoSerialMice=COM1"},
    Switch{"lblMAXMEM", "/MAXMEM=x                   Limits memory available to the system",
           "/MAXMEM=32"},
    Switch{"lblDEBUG",
           "/DEBUG                          Enables a remote debug console via a serial port",
           "/DEBUG"},
    Switch{"lblDEBUGPORT",
           "/DEBUGPORT=COMx    Specifies which debug port will be the debug console port",
           "/DEBUG /DEBUGPORT=COM2"},
    Switch{"lblBAUDRATE",
           "/BAUDRATE                   Specifies the baud rate for the debug console port",
           "/DEBUG /DEBUGPORT=COM2 /BAUDRATE=57600"},
    Switch{"lblCRASHDEBUG", "/CRASHDEBUG              Reserves stack space for remote debugging",
           "/CRASHDEBUG"},
};

std::string whyUnreadable(Status status) {
  if (status == ERROR_MORE_DATA) {
    return fmt::format("{} is too large for a boot file.", kBootIni);
  }
  if (status == ERROR_INVALID_DATA) return fmt::format("{} holds no plain text.", kBootIni);
  if (status == ERROR_FILE_NOT_FOUND) return fmt::format("There is no file {}.", kBootIni);
  return fmt::format("{} cannot be read: {}.", kBootIni, describeStatus(status));
}

// The names in a string list, each on a line of its own.
std::string linesOf(std::string_view list) {
  std::string lines;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find('\0'), list.size());
    if (end > 0) lines += std::string(list.substr(0, end)) + std::string(kCrLf);
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return lines;
}

}  // namespace

frmNTDebug::frmNTDebug(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - NT Debug", parts), bootFile_(parts.session) {
  addSwitches();
  cmdDrWatson_ =
      makeOpener(*this, parts,
                 {"cmdDrWatson", "Dr. &Watson...",
                  "Opens the settings of Dr. Watson, which records crashes", "frmDrWat"});
  setToolTips();
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  Layout buttons = Layout::row({of(cmdShowDriverLoadOrder)});
  if (cmdDrWatson_ != nullptr) buttons.parts.push_back(of(*cmdDrWatson_));
  for (const Layout& part : {Layout::space(), of(cmdApply), of(cmdDone)}) {
    buttons.parts.push_back(part);
  }
  const Layout bootPart = Layout::column({of(lblBootIni), of(txtBOOTININT), switches_, buttons});
  bootControls_ = controlsIn(bootPart);
  buttons.parts.push_back(of(cmdShowLoadOrderDone));
  layout = Layout::column({of(lblBootIni), of(txtBOOTININT), switches_, of(lblDriverLoadInfo),
                           of(cmdDriverLoadOrderSave), of(txtDriverLoadOrder), buttons});
  showLoadOrder(false);
  onPress(cmdApply, [this] { cmdApply_Click(); });
  onPress(cmdShowDriverLoadOrder, [this] {
    if (txtDriverLoadOrder.Text->empty()) P_DetermineDriverLoadOrder();
    showLoadOrder(true);
  });
  onPress(cmdDriverLoadOrderSave, [this] { cmdDriverLoadOrderSave_Click(); });
  onPress(cmdShowLoadOrderDone, [this] { showLoadOrder(false); });
  onPress(cmdDone, [this] { cmdDone_Click(); });
}

void frmNTDebug::addSwitches() {
  switches_ = Layout::group("", {});
  switches_.control = &fraBootIni;
  for (const Switch& row : kSwitches) {
    auto& label = own<forms::Label>(row.name, row.text);
    label.ToolTipText = " click ? and drop it on me for example ";
    label.WhatsThis = fmt::format(
        "Goes behind the name of a system in the section [operating systems], for example:\r\n"
        "multi(0)disk(0)rdisk(0)partition(1)\\WINNT=\"Windows NT\" {}",
        row.example);
    switches_.parts.push_back(Layout::of(label));
  }
}

void frmNTDebug::setToolTips() {
  fraBootIni.ToolTipText = "Switches that a system's line in boot.ini may end with";
  cmdDone.ToolTipText = "Close this window";
  lblDriverLoadInfo.ToolTipText = "Windows loads the groups from top to bottom";
  cmdDriverLoadOrderSave.ToolTipText = "Saves the list on your desktop as Driver Load Order.txt";
  txtDriverLoadOrder.AccessibleName = "Driver load order";
  txtDriverLoadOrder.ToolTipText = "The groups of drivers, in the order in which NT loads them";
  cmdShowLoadOrderDone.ToolTipText = "Back to boot.ini";
  txtBOOTININT.WhatsThis =
      "The boot file of Windows NT and 2000. Before it is written, the file as it is now is copied "
      "to C:\\boot.org, and the very first time to C:\\boot.mstr, which is never overwritten.";
}

void frmNTDebug::setUsable(forms::Control& control, const std::string& reason,
                           const std::string& toolTip) {
  control.Enabled = reason.empty();
  control.ToolTipText = reason.empty() ? toolTip : reason;
}

void frmNTDebug::readMachine() {
  p_InitializeBootIniText();
  const engine::TweakState order =
      engine::availability({.property = {}, .families = engine::kNT}, session());
  setUsable(cmdShowDriverLoadOrder, std::string(order.reason),
            "Shows in which order NT loads its drivers");
}

void frmNTDebug::p_InitializeBootIniText() {
  session().trace.enter("[p_InitializeBootIniText]");
  const Status status = bootFile_.read();
  readable_ = status == ERROR_SUCCESS;
  txtBOOTININT.Text = readable_ ? bootFile_.text() : std::string(kNoBootIni);
  const std::string reason = readable_ ? "" : whyUnreadable(status);
  setUsable(txtBOOTININT, reason, "The whole boot file, as text");
  setUsable(cmdApply, reason, "Writes boot.ini, after a question");
  StatusText = reason;
}

int frmNTDebug::changesWaiting() const {
  return readable_ && txtBOOTININT.Text.get() != bootFile_.text() ? 1 : 0;
}

// What is odd about the text, or about the file by now, is asked before anything is written.
bool frmNTDebug::agreeOnText() {
  bool changed = false;
  const Status status = bootFile_.compare(changed);
  if (!succeeded(fmt::format("{} cannot be read", kBootIni), status)) return false;
  if (changed && !askYesNo(fmt::format("Another program has changed {} since this window was "
                                       "opened.\r\nOverwrite what it has written?",
                                       kBootIni))) {
    return false;
  }
  for (const std::string_view head : {"[boot loader]", "[operating systems]"}) {
    if (hasSection(txtBOOTININT.Text.get(), head)) continue;
    if (!askYesNo(fmt::format("The text has no section {}. Windows may be unable to start with "
                              "it.\r\nDo you want to write it all the same?",
                              head))) {
      return false;
    }
  }
  return askYesNo(
      "Korvex is about to make changes to your Windows NT boot.ini file.\r\n"
      "Are you sure you want to write these changes?");
}

void frmNTDebug::cmdApply_Click() {
  session().trace.enter("[frmNTDebug.cmdApply_Click]");
  std::string bytes;
  if (!bootFile_.fileOf(txtBOOTININT.Text.get(), bytes)) {
    return tell(
        "The text has characters that the code page of this Windows does not have.\r\n"
        "Nothing was changed. Take them out and try again.");
  }
  if (bytes.size() > BootFile::kLargest) {
    return tell("The text is too large for a boot file.\r\nNothing was changed.");
  }
  if (!agreeOnText()) return;
  const BootWrite write = bootFile_.write(bytes);
  if (write.status != ERROR_SUCCESS) return tell(describeFailure(write), kIconExclamation);
  readAgain();
  StatusText = fmt::format("{} has been written. The file before is {}.", kBootIni, kBootPrevious);
}

// Two windows in one: each has a button of its own to leave it.
void frmNTDebug::showLoadOrder(bool shown) {
  for (forms::Control* control : bootControls_) control->Visible = !shown;
  for (forms::Control* control :
       std::initializer_list<forms::Control*>{&lblDriverLoadInfo, &cmdDriverLoadOrderSave,
                                              &txtDriverLoadOrder, &cmdShowLoadOrderDone}) {
    control->Visible = shown;
  }
}

void frmNTDebug::P_DetermineDriverLoadOrder() {
  session().trace.enter("[P_DetermineDriverLoadOrder]");
  engine::RawValue list;
  Status status = engine::readRawValue(registry(), HKEY_LOCAL_MACHINE, kGroupOrder, "List", list);
  if (!succeeded("The load order cannot be read", status)) return;
  if (list.bytes.empty()) return;
  list.bytes.pop_back();
  const std::string lines = linesOf(list.bytes);
  std::string bytes;
  if (!encodeText(session(), lines, bytes)) bytes = lines;
  status = session().files().replace(workFile(), bytes);
  madeWorkFile_ = status == ERROR_SUCCESS;
  std::string present;
  if (status == ERROR_SUCCESS) status = session().files().read(workFile(), present);
  // The list is worth seeing even where it cannot be written.
  txtDriverLoadOrder.Text = status == ERROR_SUCCESS ? decodeText(session(), present) : lines;
  succeeded(fmt::format("{} cannot be written", workFile()), status);
}

void frmNTDebug::cmdDriverLoadOrderSave_Click() {
  session().trace.enter("[frmDebug.cmdDriverLoadOrderSave_Click]");
  Files& files = session().files();
  const std::string& folder = session().pd.DesktopPath;
  const std::string target = fmt::format("{}\\{}", folder, kSavedName);
  std::string list;
  std::string present;
  Status status = files.read(workFile(), list);
  if (status == ERROR_SUCCESS && files.read(target, present) == ERROR_SUCCESS && present != list &&
      !askYesNo(fmt::format("{} is there already.\r\nReplace it?", target))) {
    return;
  }
  if (status == ERROR_SUCCESS) status = files.copy(workFile(), target, Overwrite::Yes);
  if (!succeeded(fmt::format("{} cannot be written", target), status)) return;
  tell(fmt::format("Korvex saved the file as \"Driver load order.txt\" at {}", folder));
}

void frmNTDebug::cmdDone_Click() {
  if (session().files().exists(workFile())) {
    succeeded(fmt::format("{} cannot be deleted", workFile()),
              session().files().remove(workFile()));
  }
  // Made anew where the window stays open.
  madeWorkFile_ = false;
  txtDriverLoadOrder.Text = "";
  close();
}

// However the window was closed.
void frmNTDebug::Unload() {
  if (!madeWorkFile_ || !session().files().exists(workFile())) return;
  session().trace.dump("lRetVal&", session().files().remove(workFile()));
}

bool frmNTDebug::succeeded(std::string_view what, Status status) {
  if (status == ERROR_SUCCESS) return true;
  session().trace.dump("lRetVal&", status);
  tell(fmt::format("{}: {}.", what, describeStatus(status)), kIconExclamation);
  return false;
}

}  // namespace korvex::dialogs
