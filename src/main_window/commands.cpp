// What the buttons do.
#include "main_window/commands.h"

#include <fmt/format.h>

#include <utility>

#include "backup/config_set.h"
#include "engine/at_once.h"
#include "engine/folder_choice.h"
#include "engine/office.h"
#include "engine/readers.h"
#include "foundation/error_handler.h"
#include "main_window/options.h"

namespace korvex::main_window {

using engine::k9x;
using engine::kEvery;
using engine::kNT;
using engine::kNT4;
using engine::kWin95;
using engine::kWin98;
using engine::kWinMe;
using engine::Page;
using forms::CommandButton;
using forms::Layout;
using namespace platform;

namespace {

constexpr std::string_view kPrinters = "SYSTEM\\CurrentControlSet\\Control\\Print\\Printers";
constexpr std::string_view kSpoolDirectory = "DefaultSpoolDirectory";
constexpr std::string_view kSetup = "Software\\Microsoft\\Windows\\CurrentVersion\\Setup";
constexpr std::string_view kSourcePath = "SourcePath";
constexpr std::string_view kRegPath = "RegPath";

constexpr const char* kOffice = "Tweaks";

// Two beside each other: a page has to fit on a small screen.
void addButton(std::vector<Layout>& parts, CommandButton& button) {
  const bool goesOn = !parts.empty() && parts.back().kind == Layout::Kind::Row &&
                      parts.back().parts.front().kind == Layout::Kind::Grid;
  if (!goesOn) parts.push_back(Layout::row({Layout::grid(2, {}), Layout::space()}));
  parts.back().parts.front().parts.push_back(Layout::of(button));
}

// What is cleared cannot come back: the person may want to know how much it is.
std::string withCount(std::string_view question, int count, const CommandButtons::Noun& noun) {
  if (count == 0) return std::string(question);
  return fmt::format("{}{}({})", question, foundation::kCrLf, noun.of(count));
}

}  // namespace

std::string CommandButtons::Noun::of(int count) const {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

const std::vector<CommandButtons::Row>& CommandButtons::rows() {
  using B = CommandButtons;
  static const std::vector<Row> table{
      {"cmdMoreSecurity", "More restrictions...", Page::Security, "More",
       "Opens a window with further restrictions", kEvery, 0, nullptr, "frmMoreSecurity"},
      {"cmdStartMenuAlpha", "Sort the Start men&u by name", Page::WinTweaks, "Start menu",
       "Forgets the order that items were dragged into", kEvery, kWin95 | kNT4,
       &B::cmdStartMenuAlpha_Click},
      {"cmdStartMenuConfig", "Order of the Start menu...", Page::WinTweaks, "Start menu",
       "Shows which folders of the Start menu have an order of their own", kEvery, kWin95 | kNT4,
       nullptr, "frmStartMenuConfig"},
      {"cmdClearDOCSNow", "Clear the documents", Page::WinTweaks, "Clear now",
       "Empties Documents on the Start menu", kEvery, 0, &B::cmdClearDOCSNow_Click},
      {"cmdClearIEURLList", "Clear the typed addresses", Page::WinTweaks, "Clear now",
       "Forgets the addresses typed into Internet Explorer", kEvery, 0,
       &B::cmdClearIEURLList_Click},
      {"cmdClearMRUs", "Clear all lists of recent items", Page::WinTweaks, "Clear now",
       "Forgets what was run, opened, searched and mapped last", kEvery, 0, &B::cmdClearMRUs_Click},
      {"cmdClearRUN", "Clear the Run list", Page::WinTweaks, "Clear now",
       "Forgets the commands typed into Run", kEvery, 0, &B::cmdClearRUN_Click},
      {"cmdStartupApps", "Startup programs...", Page::WinTweaks, "Setup",
       "Switches off, deletes and adds what Windows starts by itself", kEvery, 0, nullptr,
       "frmRunOnce"},
      {"cmdInstallPath", "Windows's source path...", Page::WinTweaks, "Setup",
       "Changes where Windows looks for its own files", kEvery, 0, &B::cmdInstallPath_Click},
      {"cmdSystemInformation", "Owner and company...", Page::WinTweaks, "Setup",
       "Changes to whom Windows is registered", kEvery, 0, nullptr, "frmSystemInformation"},
      {"cmdAutoLogon", "Automatic logon...", Page::WinTweaks, "Setup",
       "Has Windows log a user on by itself", kEvery, 0, nullptr, "frmAutoLogon"},
      {"cmdRightClick", "Right click menus...", Page::WinTweaks, "Setup",
       "Adds programs to the menus of file types, and takes them out again", kEvery, 0, nullptr,
       "frmRightClick"},
      {"cmdMoreWinTweaks", "More Win Tweaks...", Page::WinTweaks, "More",
       "Opens a window with further settings of Explorer, Internet Explorer and hardware", kEvery,
       0, nullptr, "frmWinTweaksII"},
      {"cmdMSConfig", "System &Configuration", Page::Windows9x, "Programs",
       "Starts msconfig.exe of the machine", kWin98 | kWinMe, 0, &B::cmdMSConfig_Click},
      {"cmdWinCompat", "&Make Compatible", Page::Windows9x, "Programs",
       "Starts mkcompat.exe of the machine", k9x, 0, &B::cmdWinCompat_Click},
      {"cmdCustomLogon", "Message before logon...", Page::NT4Win2K, "Logon",
       "Changes what is shown before anybody logs on", kEvery, 0, nullptr, "frmCustomLogon"},
      {"cmdLogonBitmap", "Logon bitmap...", Page::NT4Win2K, "Logon",
       "Changes the picture behind the logon prompt", kNT, 0, nullptr, "frmLogon_Bitmap"},
      {"cmdChangePrintSpool", "Spool folder...", Page::NT4Win2K, "Printing",
       "Changes where documents wait for their printer", kNT, 0, &B::cmdChangePrintSpool_Click},
      {"cmdNT4_Win2KCont", "More NT4/Win2K tweaks...", Page::NT4Win2K, "More",
       "Opens a window with further settings of NT", kNT, 0, nullptr, "frmNT4_Win2KCont"},
      {"cmdNTServer", "NT server...", Page::NT4Win2K, "More",
       "Opens a window with settings of a server", kNT, 0, nullptr, "frmNTServer"},
      {"cmdNTDebug", "Boot.ini and debugging...", Page::NT4Win2K, "More",
       "Edits boot.ini and shows in which order drivers load", kEvery, 0, nullptr, "frmNTDebug"},
      {"cmdL2Cache", "L2 cache...", Page::NT4Win2K, "More",
       "Tells NT the size of the second-level cache", kNT, 0, nullptr, "frmL2Cache"},
      {"cmdLoadfrmOffice", "Select for MS Office tweaks", Page::MSOffice, kOffice,
       "Opens a window with settings of Word, Excel, PowerPoint, the Assistant and Jet", kEvery, 0,
       nullptr, "frmOffice", engine::needsOffice},
      {"cmdExcelMRUs", "Excel's recent files...", Page::MSOffice, kOffice,
       "Shows what Excel lists as opened last, and takes entries away", kEvery, 0, nullptr,
       "frmMRUs", engine::needsOffice},
      {"cmdBrowse", "Bro&wse...", Page::Registry, "Saved settings",
       "Chooses the folder of saved registry settings", kEvery, 0, &B::cmdBrowse_Click},
  };
  return table;
}

CommandButtons::CommandButtons(forms::Form& form, foundation::Session& session,
                               forms::FormBook& formBook)
    : form_(form),
      session_(session),
      formBook_(formBook),
      lblPrintSpool_(form.own<forms::Label>("lblPrintSpool", "")),
      lblLogonMessage_(form.own<forms::Label>("lblLogonMessage", "")),
      txtRegPath_(form.own<forms::TextBox>(
          "txtRegPath", forms::TextBoxOptions{.widthInCharacters = 30, .readOnly = true})),
      lblRegPath_(
          form.own<forms::Label>("lblRegPath", "&Folder of saved settings:", &txtRegPath_)) {
  txtRegPath_.ToolTipText = "Where registry settings are saved";
  for (const Row& row : rows()) {
    if (!exists(row)) continue;
    auto& button = form.own<CommandButton>(row.name, row.caption);
    button.ToolTipText = row.toolTip;
    button.Click += [this, &row] {
      foundation::guarded(session_, std::string(row.name) + "_Click", [this, &row] { press(row); });
    };
  }
}

bool CommandButtons::exists(const Row& row) const {
  return row.opens == nullptr || formBook_.knows(row.opens);
}

void CommandButtons::press(const Row& row) {
  if (row.opens == nullptr) return (this->*row.handler)();
  formBook_.showModal(row.opens);
  load();  // what the window may have changed
}

std::vector<Layout> CommandButtons::groups(Page page) {
  std::vector<Layout> groups;
  if (page == Page::NT4Win2K) {
    groups.push_back(Layout::group("Logon", {Layout::of(lblLogonMessage_)}));
  }
  for (const Row& row : rows()) {
    if (row.page != page || !exists(row)) continue;
    if (groups.empty() || groups.back().title != row.group) {
      groups.push_back(Layout::group(row.group, {}));
    }
    std::vector<Layout>& parts = groups.back().parts;
    auto& button = *form_.find<CommandButton>(row.name);
    if (row.handler == &CommandButtons::cmdBrowse_Click) {
      parts.push_back(Layout::of(lblRegPath_));
      parts.push_back(Layout::row({Layout::of(txtRegPath_), Layout::of(button)}));
      continue;
    }
    if (row.handler == &CommandButtons::cmdChangePrintSpool_Click) {
      parts.push_back(Layout::of(lblPrintSpool_));
    }
    addButton(parts, button);
  }
  return groups;
}

void CommandButtons::load() {
  for (const Row& row : rows()) {
    if (!exists(row)) continue;
    const engine::Tweak facts{.property = {},
                              .families = row.families,
                              .needsDesktopUpdate = row.needsDesktopUpdate,
                              .lacks = row.lacks};
    const engine::TweakState state = engine::availability(facts, session_);
    if (state.kind != engine::TweakState::Kind::Unavailable) continue;
    auto& button = *form_.find<CommandButton>(row.name);
    button.Enabled = false;
    button.ToolTipText = std::string(state.reason);
  }
  p_DetermineLogonMessage();
  p_DetermineDefaultPrintSpoolDir();
  showRegPath();
}

// What Windows shows before anybody logs on, by its title.
void CommandButtons::p_DetermineLogonMessage() {
  session_.trace.enter("[p_DetermineLogonMessage]");
  constexpr std::string_view kWinlogon =
      "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon";
  const auto stored = [&](std::string_view name) {
    return session_.regTool.GetRegStr(kWinlogon, name, HKEY_LOCAL_MACHINE);
  };
  std::string title = stored("LegalNoticeCaption");
  if (title.empty()) title = stored("LegalNoticeText").empty() ? "none" : "one without a title";
  lblLogonMessage_.Visible = session_.g_bNT;
  lblLogonMessage_.Caption = "Message before logon: " + forms::captionOf(title);
}

void CommandButtons::p_DetermineDefaultPrintSpoolDir() {
  session_.trace.enter("[p_DetermineDefaultPrintSpoolDir]");
  lblPrintSpool_.Visible = session_.g_bNT;
  if (!session_.g_bNT) return;
  lblPrintSpool_.Caption =
      " Current printer spool directory: " +
      forms::captionOf(session_.regTool.GetRegStr(kPrinters, kSpoolDirectory, HKEY_LOCAL_MACHINE));
}

void CommandButtons::showRegPath() { txtRegPath_.Text = backup::saveFolder(session_); }

void CommandButtons::cmdStartMenuAlpha_Click() {
  const int count = countEntries(ShellList::MenuOrder, session_);
  if (!engine::askYesNo(session_, withCount("Force Start Menu items alphabetical?", count,
                                            {"stored order", "stored orders"}))) {
    return;
  }
  if (!cleared(ShellList::MenuOrder, "The order of the Start menu")) return;
  engine::tell(session_,
               count == 0 ? "Operation complete.\r\nNo menu had an order of its own."
                          : "Operation complete.",
               kIconInformation);
}

void CommandButtons::cmdChangePrintSpool_Click() {
  const auto folder =
      engine::chooseFolder(session_, "Identify a new default printer spool directory.");
  if (!folder || folder->empty()) return;
  if (!write(kPrinters, kSpoolDirectory, *folder, "The spool directory")) return;
  p_DetermineDefaultPrintSpoolDir();
  engine::tell(session_, "Default spool directory successfully changed.", kIconInformation);
}

void CommandButtons::cmdInstallPath_Click() {
  const std::string present = session_.regTool.GetRegStr(kSetup, kSourcePath, HKEY_LOCAL_MACHINE);
  const auto path =
      session_.prompts().inputBox("Type the new source path for Windows to search at.",
                                  "Change Windows's source path", present);
  if (!path || path->empty() || *path == present) return;
  if (!write(kSetup, kSourcePath, *path, "Windows's source path")) return;
  form_.StatusText = "Windows's source path is now " + *path;
}

void CommandButtons::cmdBrowse_Click() {
  const auto folder =
      engine::chooseFolder(session_, "Identify the folder where registry settings will be stored.");
  if (!folder || folder->empty()) return;
  if (write(kConfiguration, kRegPath, *folder, "The folder of saved settings")) showRegPath();
}

void CommandButtons::cmdClearDOCSNow_Click() {
  clear(ShellList::Documents, "Clear documents from Start Menu now?", {"document", "documents"});
}

void CommandButtons::cmdClearIEURLList_Click() {
  clear(ShellList::TypedAddresses, "Clear Internet Explorer's URL list now?",
        {"address", "addresses"});
}

void CommandButtons::cmdClearMRUs_Click() {
  clear(ShellList::All, "Clear all MRU lists now?", {"entry", "entries"});
}

void CommandButtons::cmdClearRUN_Click() {
  clear(ShellList::RunCommands, "", {"command", "commands"});
}

void CommandButtons::clear(ShellList list, std::string_view question, const Noun& noun) {
  const int count = countEntries(list, session_);
  const bool asks = !question.empty() && !session_.g_bNoShowConfirmation;
  if (asks && !engine::askYesNo(session_, withCount(question, count, noun))) return;
  if (!cleared(list, "The list")) return;
  engine::tell(
      session_,
      count == 0 ? "There was nothing to clear." : fmt::format("{} cleared.", noun.of(count)),
      kIconInformation);
}

bool CommandButtons::cleared(ShellList list, std::string_view what) {
  return engine::finishAtOnce(session_, what, clearList(list, session_));
}

bool CommandButtons::write(std::string_view key, std::string_view name, const std::string& text,
                           std::string_view what) {
  return engine::changeAtOnce(session_, what, [&] {
    return engine::putValue(session_, HKEY_LOCAL_MACHINE, key, name, text);
  });
}

void CommandButtons::cmdMSConfig_Click() { start("msconfig.exe"); }
void CommandButtons::cmdWinCompat_Click() { start("mkcompat.exe"); }

void CommandButtons::start(const std::string& program) {
  std::string message;
  const Status status =
      session_.machine().processes().ShellExecuteA("open", program, "", "", message);
  session_.trace.dump("lRetVal&", status);
  if (status == ERROR_SUCCESS) return;
  engine::tell(session_,
               message.empty()
                   ? fmt::format("{} could not be started: {}.", program, describeStatus(status))
                   : message,
               kIconExclamation);
}

}  // namespace korvex::main_window
