// Walking the folders, and forgetting an order.
#include "dialogs/shell/frm_start_menu_config.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "engine/raw_value.h"
#include "engine/readers.h"
#include "platform/text/text.h"

namespace korvex::dialogs {

using forms::Layout;
using namespace platform;

namespace {

constexpr std::string_view kRoot =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\MenuOrder";
constexpr std::string_view kRootName = "MENUORDER";
constexpr std::string_view kMenu = "MENU";
constexpr std::string_view kOrder = "Order";
constexpr std::string_view kUp = "..";
constexpr std::string_view kAlphabetical = "Menu is already forced alphabetical.";
constexpr std::string_view kFailed = "Selected menu was not restored to alphabetical.";

std::string lastPart(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

// Explorer names the keys as the menu writes them: "&Programs" has an underlined letter.
std::string withoutMarks(std::string_view name) {
  std::string shown;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (name[i] == '&' && i + 1 < name.size()) ++i;
    shown += name[i];
  }
  return shown;
}

}  // namespace

frmStartMenuConfig::frmStartMenuConfig(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Start menu order", parts),
      taken_(parts.session, engine::HKCU, "MenuOrder") {
  describe();
  arrange();
  cboStartParent.Click +=
      [this] { trap("cboStartParent_Click", [this] { cboStartParent_Click(); }); };
  lstStartSub.Click += [this] { trap("lstStartSub_Click", [this] { lstStartSub_Click(); }); };
  cboKept.Click += [this] { showWhatCanBeDone(); };
  onPress(cmdForceAlpha, [this] { cmdForceAlpha_Click(); });
  onPress(cmdAccel, [this] { tell("Not implemented."); });
  onPress(cmdTakeBack, [this] { cmdTakeBack_Click(); });
  cmdDone.Click += [this] { close(); };
}

void frmStartMenuConfig::describe() {
  lstStartSub.WhatsThis = fmt::format(
      "The keys below HKEY_CURRENT_USER\\{}. Explorer makes one for each folder of the Start menu "
      "and of the Favorites that was opened, and keeps in the value Order of its subkey Menu in "
      "which order its items were dragged.",
      kRoot);
  cmdForceAlpha.WhatsThis =
      "Deletes the value Order of the present folder, and of none of its subfolders.";
  cmdDone.ToolTipText = "Close this window";
}

void frmStartMenuConfig::arrange() {
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {Layout::grid(2, {of(lblStartParent), of(cboStartParent)}), of(lblStartSub), of(lstStartSub),
       of(lblState), Layout::row({of(cmdForceAlpha), of(cmdAccel), Layout::space()}),
       Layout::row({of(lblKept), of(cboKept), of(cmdTakeBack), Layout::space(), of(cmdDone)})});
}

std::string frmStartMenuConfig::pathBelowRoot(std::size_t levels) const {
  std::string path;
  for (std::size_t i = 0; i < levels; ++i) path += (i == 0 ? "" : "\\") + walked_[i];
  return path;
}

std::string frmStartMenuConfig::currentPath() const {
  return walked_.empty() ? std::string(kRoot)
                         : fmt::format("{}\\{}", kRoot, pathBelowRoot(walked_.size()));
}

bool frmStartMenuConfig::isRoot() const {
  return walked_.empty() && sameName(lastPart(currentPath()), kRootName);
}

std::string frmStartMenuConfig::shownName() const {
  return isRoot() ? lastPart(currentPath()) : withoutMarks(pathBelowRoot(walked_.size()));
}

Status frmStartMenuConfig::orderStatus() const {
  engine::RawValue order;
  return engine::readRawValue(registry(), HKEY_CURRENT_USER, menuKey(), kOrder, order);
}

void frmStartMenuConfig::readMachine() {
  session().trace.enter("[frmStartMenuConfig.Form_Load]");
  StatusText = "";
  for (forms::Control* control :
       std::initializer_list<forms::Control*>{&cboStartParent, &lstStartSub, &cmdAccel}) {
    control->Enabled = true;
  }
  cboStartParent.ToolTipText = "Goes back to one of the folders above";
  lstStartSub.ToolTipText = "Choose a folder to see what it holds; .. goes back";
  cmdAccel.ToolTipText = "Letters that choose items of the Start menu";
  const engine::TweakState state = engine::availability(
      {.property = {}, .needsDesktopUpdate = engine::kWin95 | engine::kNT4}, session());
  if (state.kind == engine::TweakState::Kind::Unavailable) noteProblem(std::string(state.reason));
  showFolder();
  showKept();
}

void frmStartMenuConfig::showFolder() {
  std::vector<std::string> folders;
  Status status =
      engine::listSubKeys(registry(), HKEY_CURRENT_USER, currentPath(), KEY_READ, folders);
  // Somebody may have deleted the folder: its parent is shown then.
  while (status == ERROR_FILE_NOT_FOUND && !walked_.empty()) {
    walked_.pop_back();
    status = engine::listSubKeys(registry(), HKEY_CURRENT_USER, currentPath(), KEY_READ, folders);
  }
  noteRead(engine::missingIsFine(status));
  showing_ = true;
  lstStartSub.Clear();
  if (!isRoot()) lstStartSub.AddItem(std::string(kUp));
  for (const std::string& folder : folders) {
    if (!sameName(folder, kMenu)) lstStartSub.AddItem(folder);
  }
  cboStartParent.Clear();
  cboStartParent.AddItem(lastPart(std::string(kRoot)));
  for (std::size_t i = 1; i <= walked_.size(); ++i) cboStartParent.AddItem(pathBelowRoot(i));
  cboStartParent.ListIndex = static_cast<int>(walked_.size());
  showing_ = false;
  showWhatCanBeDone();
}

void frmStartMenuConfig::showKept() {
  kept_ = taken_.items();
  cboKept.Clear();
  for (const auto& item : kept_) cboKept.AddItem(fmt::format("{} ({})", item.name, item.when));
  if (!kept_.empty()) cboKept.ListIndex = 0;
  showWhatCanBeDone();
}

void frmStartMenuConfig::showWhatCanBeDone() {
  const Status order = orderStatus();
  const std::string name = forms::captionOf(shownName());
  if (order == ERROR_SUCCESS) {
    lblState.Caption = fmt::format("{} has an order of its own.", name);
  } else if (order == ERROR_FILE_NOT_FOUND && isRoot()) {
    lblState.Caption = "Choose a folder to see whether it has an order of its own.";
  } else if (order == ERROR_FILE_NOT_FOUND) {
    lblState.Caption = fmt::format("{} is in alphabetical order.", name);
  } else {
    lblState.Caption =
        fmt::format("The order of {} could not be read: {}.", name, describeStatus(order));
  }
  cmdForceAlpha.Enabled = true;
  cmdForceAlpha.ToolTipText = "Forgets the order that the items of the present folder have";
  const std::string nothing = "No order was forgotten here.";
  cboKept.Enabled = !kept_.empty();
  cmdTakeBack.Enabled = cboKept.ListIndex >= 0;
  cboKept.ToolTipText = kept_.empty() ? nothing : "Orders that were forgotten, the last one first";
  cmdTakeBack.ToolTipText = kept_.empty() ? nothing : "Gives the folder its order back";
}

void frmStartMenuConfig::lstStartSub_Click() {
  if (showing_ || lstStartSub.ListIndex < 0) return;
  session().trace.enter("[frmStartMenuConfig.lstStartSub_Click]");
  const std::string chosen = lstStartSub.selectedItem();
  if (chosen != kUp) {
    walked_.push_back(chosen);
  } else if (!isRoot()) {
    walked_.pop_back();
  }
  session().trace.dump("sPath$", currentPath());
  StatusText = "";
  showFolder();
}

void frmStartMenuConfig::cboStartParent_Click() {
  if (showing_ || cboStartParent.ListIndex < 0) return;
  session().trace.enter("[frmStartMenuConfig.cboStartParent_Click]");
  walked_.resize(std::min(walked_.size(), static_cast<std::size_t>(cboStartParent.ListIndex)));
  StatusText = "";
  showFolder();
}

void frmStartMenuConfig::cmdForceAlpha_Click() {
  session().trace.enter("[frmStartMenuConfig.cmdForceAlpha_Click]");
  const Status order = orderStatus();
  session().trace.dump("lRetVal&", order);
  if (order == ERROR_FILE_NOT_FOUND) return tell(kAlphabetical);
  if (order != ERROR_SUCCESS) return tell(kFailed, kIconExclamation);
  if (!askYesNo("Are you sure you want to force the following Start Menu folder alphabetical?\r\n" +
                shownName() + "\r\nAfter rebooting alphabetical order will be restored.")) {
    return;
  }
  Status status = ERROR_SUCCESS;
  const bool done = engine::changeOrTell(session(), kFailed, kIconExclamation, [&] {
    status = taken_.removeValue(menuKey(), kOrder, shownName());
    return status;
  });
  if (done) session().g_bRebootNeeded = true;
  showFolder();
  showKept();
  StatusText = done ? shownName() + " is alphabetical after the next restart."
                    : fmt::format("Nothing was changed: {}.", describeStatus(status));
}

void frmStartMenuConfig::cmdTakeBack_Click() {
  session().trace.enter("[frmStartMenuConfig.cmdTakeBack_Click]");
  const int selected = cboKept.ListIndex;
  if (selected < 0) return;
  const engine::TakenAway::Item item = kept_[selected];
  const bool done = engine::changeAtOnce(session(), "The order of " + item.name,
                                         [&] { return taken_.takeBack(item); });
  if (done) session().g_bRebootNeeded = true;
  showFolder();
  showKept();
  if (done) StatusText = item.name + " has its order back after the next restart.";
}

}  // namespace korvex::dialogs
