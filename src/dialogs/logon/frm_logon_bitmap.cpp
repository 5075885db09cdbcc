// Choosing a file, and what becomes of it in each mode.
#include "dialogs/logon/frm_logon_bitmap.h"

#include <utility>

#include "engine/same_name.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using engine::sameName;
using forms::Layout;

namespace {

constexpr std::string_view kDefaultDesktop = ".DEFAULT\\Control Panel\\Desktop";
constexpr std::string_view kWallpaper = "Wallpaper";
constexpr const char* kNoWallpaper = "(Default)";
constexpr std::string_view kAppPaths = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";
constexpr std::string_view kSlashes = "\\/";

std::string lastPart(const std::string& path) {
  return path.substr(path.find_last_of(kSlashes) + 1);  // npos + 1 is 0
}

// Windows takes either slash.
bool beginsWithTwoSlashes(std::string_view path) {
  return path.size() > 1 && path.substr(0, 2).find_first_not_of(kSlashes) == std::string_view::npos;
}

bool isBitmapName(const std::string& path) {
  constexpr std::string_view kEnding = ".bmp";
  const std::string name = lastPart(path);
  return name.size() > kEnding.size() &&
         sameName(std::string_view(name).substr(name.size() - kEnding.size()), kEnding);
}

bool meansDefault(const std::string& typed) {
  return typed.empty() || sameName(typed, "Default") || sameName(typed, kNoWallpaper);
}

}  // namespace

frmLogon_Bitmap::frmLogon_Bitmap(const DialogParts& parts, LogonBitmapDesk& desk)
    : DirectDialog(kName, "Korvex...for Power Users - Logon Bitmap", parts,
                   desk.mode == LogonBitmapDesk::kRestrictRun ? engine::kEvery : engine::kNT),
      desk_(desk),
      mode_(std::exchange(desk.mode, "")) {
  desk_.name.clear();
  describe();
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column({of(lblBitmap), Layout::row({of(txtBitmap), of(cndBitmap_Browse)}),
                           Layout::space(),
                           Layout::row({Layout::space(), of(cmdBitmap_Finish), of(cmdDone)})});
  onPress(cndBitmap_Browse, [this] { cndBitmap_Browse_Click(); });
  onPress(cmdBitmap_Finish, [this] { cmdBitmap_Finish_Click(); });
  cmdDone.Click += [this] { close(); };
}

void frmLogon_Bitmap::describe() {
  if (asksForProgram()) {
    Caption = "Add allowed Windows application...";
    lblBitmap.Caption =
        "Type the Windows executable name or browse for it.\r\n"
        "(Only the executable name is needed, i.e., notepad.exe)";
    txtBitmap.AccessibleName = "Windows executable name";
    txtBitmap.ToolTipText = "The name of the program's file";
    cndBitmap_Browse.ToolTipText = "Choose the program among the files of the machine";
    cmdBitmap_Finish.ToolTipText = "Add this program to those that may run";
    cmdDone.ToolTipText = "Close this window; no program is added";
    return;
  }
  lblBitmap.Caption =
      "Type the path of the bitmap or browse for it.\r\n"
      "(The word Default, or nothing, restores the original bitmap)";
  txtBitmap.AccessibleName = "Path of the bitmap";
  txtBitmap.ToolTipText = "The picture behind the logon prompt, for all users";
  cndBitmap_Browse.ToolTipText = "Choose the bitmap among the files of the machine";
  cmdBitmap_Finish.ToolTipText = "Write the bitmap to the machine";
  cmdDone.ToolTipText = "Close this window; the logon bitmap stays as it is";
}

void frmLogon_Bitmap::readMachine() {
  if (!asksForProgram()) {
    noteRead(
        engine::storedText(session(), platform::HKEY_USERS, kDefaultDesktop, kWallpaper, shown_));
    if (shown_.empty()) shown_ = kNoWallpaper;
  }
  txtBitmap.Text = shown_;
}

bool frmLogon_Bitmap::isOnAnotherComputer(std::string_view path) const {
  if (!beginsWithTwoSlashes(path)) return false;
  tell(
      "UNC paths are not allowed for this feature.\r\n"
      "Either move the bitmap to the local drive or"
      "map the drive as a local letter.",
      platform::kIconCritical);
  return true;
}

void frmLogon_Bitmap::cndBitmap_Browse_Click() {
  const bool program = asksForProgram();
  platform::FileRequest request;
  request.title = program ? "Locate the allowed Windows app..." : "Locate the bitmap file...";
  request.filter =
      program ? "All Files (*.*)|*.*|EXE Files|*.exe" : "All Files (*.*)|*.*|BMP Files|*.bmp";
  request.folder = session().g_sWinDir;
  const auto chosen = session().prompts().pickFile(request);
  if (!chosen) return;
  if (program) {
    txtBitmap.Text = lastPart(*chosen);
  } else if (!isOnAnotherComputer(*chosen)) {
    txtBitmap.Text = *chosen;
  }
}

void frmLogon_Bitmap::cmdBitmap_Finish_Click() {
  const std::string typed(platform::trimmed(txtBitmap.Text.get(), " "));
  asksForProgram() ? finishProgram(typed) : finishBitmap(typed);
}

bool frmLogon_Bitmap::writeWallpaper(const std::string& wallpaper) {
  return engine::changeAtOnce(session(), "The logon bitmap", [&] {
    return engine::putValue(session(), platform::HKEY_USERS, kDefaultDesktop, kWallpaper,
                            wallpaper);
  });
}

void frmLogon_Bitmap::finishBitmap(const std::string& typed) {
  if (meansDefault(typed)) {
    if (!writeWallpaper(kNoWallpaper)) return;
    tell(
        "Korvex has restored the original NT logon bitmap.\r\n"
        "The next time you logon the original bitmap will be displayed.\r\n"
        "This change affects all users.");
    return leave();
  }
  if (isOnAnotherComputer(typed)) return;
  if (!isBitmapName(typed)) {
    return tell(
        "The file must be a file with a bmp extension.\r\n"
        "Please check to see if you correctly entered the file"
        "name and then try again.");
  }
  if (!writeWallpaper(typed)) return;
  tell(
      "Korvex has written your custom bitmap to the registry.\r\n"
      "The next time you logon the bitmap will be displayed.\r\n"
      "To restore the default bitmap just type the word Default\r\n"
      "into the field or leave it blank. This change affects all users.");
  leave();
}

void frmLogon_Bitmap::finishProgram(const std::string& typed) {
  const std::string name = lastPart(typed);
  if (name.empty() || name.find_first_of(":*?\"<>|") != std::string::npos) {
    return tell("Type the name of the program's file, as in notepad.exe.");
  }
  const platform::OpenKey appPath(registry(), platform::HKEY_LOCAL_MACHINE,
                                  std::string(kAppPaths) + name, platform::KEY_QUERY_VALUE);
  if (appPath.status() != platform::ERROR_SUCCESS &&
      !askYesNo("The application you have chosen does not have a application path key within the "
                "regstry.\r\n"
                "This may mean that Windows will be unable to find the application to allow it to "
                "run .\r\n"
                "Please test the application before using it in a production enviroment.\r\n"
                "Do you wish to continue with this application?")) {
    return;
  }
  desk_.name = name;
  leave();
}

void frmLogon_Bitmap::leave() {
  shown_ = txtBitmap.Text;
  close();
}

}  // namespace korvex::dialogs
