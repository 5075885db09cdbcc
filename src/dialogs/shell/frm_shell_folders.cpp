// Showing the folders, and changing their paths.
#include "dialogs/shell/frm_shell_folders.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "engine/folder_choice.h"
#include "platform/text/text.h"

namespace korvex::dialogs {

using forms::Layout;
using namespace platform;

namespace {

constexpr std::string_view kNotWritten =
    "An error occurred writing the new path to the registry.\r\n\r\n"
    "The old path has been restored.";
constexpr std::string_view kReboot = "You must reboot for the changes to take effect.";
constexpr const char* kFilesStay = " Files are not moved: do that yourself.";

}  // namespace

frmShellFolders::frmShellFolders(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Shell folders", parts),
      paths_(parts.session) {
  describe();
  arrange();
  cboShellFolders.Click += [this] { showSelected(); };
  onPress(cmdChange, [this] { cmdChange_Click(); });
  onPress(cmdDefault, [this] { cmdDefault_Click(); });
  onPress(cmdDefaults, [this] { cmdDefaults_Click(); });
  cmdDone.Click += [this] { close(); };
}

void frmShellFolders::describe() {
  cboShellFolders.WhatsThis = fmt::format(
      "The values of the key HKEY_CURRENT_USER\\{}. A new path is written there and to {}. Windows "
      "looks for the folder at the new place from the next start on; what lies at the old place "
      "stays there.",
      ShellFolderPaths::plainKey(), ShellFolderPaths::userKey());
  cmdDone.ToolTipText = "Close this window";
}

void frmShellFolders::arrange() {
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {Layout::row({of(lblShellFolders), of(cboShellFolders), Layout::space()}), of(lblDescription),
       Layout::grid(2, {of(lblPath), of(txtPath), of(lblDefault), of(txtDefault)}), of(lblState),
       Layout::row(
           {of(cmdChange), of(cmdDefault), of(cmdDefaults), Layout::space(), of(cmdDone)})});
}

void frmShellFolders::p_DetermineShellFolders() {
  session().trace.enter("[p_DetermineShellFolders]");
  for (forms::Control* control :
       std::initializer_list<forms::Control*>{&cboShellFolders, &txtPath, &txtDefault}) {
    control->Enabled = true;
  }
  cboShellFolders.ToolTipText = "The special folders of the user";
  txtPath.ToolTipText = "Where Windows looks for the chosen folder";
  txtDefault.ToolTipText = "Where this Windows has the chosen folder by itself";
  const std::string chosen = cboShellFolders.selectedItem();
  const Status status = paths_.read(shown_);
  noteRead(status);
  if (status != ERROR_SUCCESS) shown_.clear();
  cboShellFolders.Clear();
  for (const ShellFolder& folder : shown_) cboShellFolders.AddItem(folder.name);
  const auto& items = cboShellFolders.items();
  const auto found = std::ranges::find(items, chosen);
  if (!items.empty()) {
    cboShellFolders.ListIndex = found == items.end() ? 0 : static_cast<int>(found - items.begin());
  }
  StatusText = "";
  cmdDefaults.Enabled = std::ranges::any_of(
      shown_, [](const ShellFolder& folder) { return folder.byDefault.has_value(); });
  cmdDefaults.ToolTipText =
      cmdDefaults.Enabled
          ? std::string("Puts all folders back to where this Windows has them by itself.") +
                kFilesStay
          : "Korvex knows no defaults of this Windows: it is later than Windows 2000.";
  showSelected();
}

const ShellFolder* frmShellFolders::selected() const {
  const int index = cboShellFolders.ListIndex;
  return index < 0 ? nullptr : &shown_[static_cast<std::size_t>(index)];
}

std::string frmShellFolders::stateText(const ShellFolder& folder) const {
  if (folder.path.empty()) return "This folder has no path on this machine.";
  std::string text;
  switch (paths_.isThere(folder.path)) {
    case ShellFolderPaths::There::Yes:
      text = "The folder is there.";
      break;
    case ShellFolderPaths::There::No:
      text = "The folder is missing.";
      break;
    case ShellFolderPaths::There::Unknown:
      text = "Whether the folder is there cannot be told from here.";
      break;
  }
  if (!folder.userPath.empty() && !sameName(folder.userPath, folder.path)) {
    text += fmt::format(" User Shell Folders names another one: {}", folder.userPath);
  }
  return text;
}

void frmShellFolders::showSelected() {
  const ShellFolder* folder = selected();
  txtPath.Text = folder == nullptr ? "" : folder->path;
  txtDefault.Text = folder == nullptr ? "" : folder->byDefault.value_or("");
  lblDescription.Caption = folder == nullptr ? "" : forms::captionOf(folder->description);
  lblState.Caption = folder == nullptr ? "" : forms::captionOf(stateText(*folder));
  cmdChange.Enabled = folder != nullptr;
  cmdChange.ToolTipText = std::string("Chooses another folder instead.") + kFilesStay;
  cmdDefault.Enabled = folder != nullptr && folder->byDefault && !folder->isDefault();
  cmdDefault.ToolTipText =
      folder == nullptr     ? "Choose a folder first."
      : !folder->byDefault  ? "Korvex knows no default of this folder in this Windows."
      : folder->isDefault() ? "The folder has its default path."
                            : std::string("Writes the default path.") + kFilesStay;
}

bool frmShellFolders::mayChange(std::string_view name) const {
  const std::string refusal = paths_.refusalOf(name);
  if (!refusal.empty()) tell(refusal);
  return refusal.empty();
}

bool frmShellFolders::write(const std::function<Status()>& steps) {
  const bool done = engine::changeOrTell(session(), kNotWritten, kIconExclamation, steps);
  readAgain();
  if (!done) {
    StatusText = "Nothing was changed.";
    return false;
  }
  session().g_bRebootNeeded = true;
  if (!session().g_bNoShowReboot) tell(kReboot);
  return true;
}

void frmShellFolders::move(const std::string& name, const std::string& path) {
  const ShellFolder shown = *selected();
  ShellFolder now;
  const Status status = paths_.readOne(name, now);
  session().trace.dump("lRetVal&", status);
  if (status != ERROR_SUCCESS || !(now == shown)) {
    readAgain();
    return tell("The path has been changed meanwhile. Please choose once more.");
  }
  if (now.path == path && now.userPath == path) {
    StatusText = fmt::format("{} is there already.", name);
    return;
  }
  if (write([&] { return paths_.write(now, path); })) {
    StatusText = fmt::format("{} is {} now.", name, path);
  }
}

void frmShellFolders::cmdChange_Click() {
  session().trace.enter("[frmShellFolders.cmdChange_Click]");
  if (selected() == nullptr) return;
  const std::string name = selected()->name;
  if (!mayChange(name)) return;
  const auto folder =
      engine::chooseFolder(session(), "Indentify the new path for the shell folder.");
  if (folder && !folder->empty()) move(name, *folder);
}

void frmShellFolders::cmdDefault_Click() {
  session().trace.enter("[frmShellFolders.cmdDefault_Click]");
  const ShellFolder* folder = selected();
  if (folder == nullptr || !folder->byDefault || !mayChange(folder->name)) return;
  const std::string name = folder->name;
  const std::string path = *folder->byDefault;
  move(name, path);
}

// What another program wrote meanwhile counts: the folders are read again first.
void frmShellFolders::cmdDefaults_Click() {
  session().trace.enter("[frmShellFolders.cmdDefaults_Click]");
  if (!askYesNo("Set shell folders to default?")) return;
  readAgain();
  const std::vector<ShellFolder> moved = ShellFolderPaths::withoutDefault(shown_);
  for (const ShellFolder& folder : moved) {
    if (!mayChange(folder.name)) return;
  }
  if (!moved.empty() && !write([&] { return paths_.P_SetShellFoldersDefault(moved); })) return;
  std::vector<std::string> alone;
  for (const ShellFolder& folder : shown_) {
    if (!folder.byDefault) alone.push_back(folder.name);
  }
  StatusText = fmt::format("{} of {} folders changed.{}", moved.size(), shown_.size(),
                           alone.empty() ? ""
                                         : fmt::format(" Without a default in this Windows: {}.",
                                                       fmt::join(alone, ", ")));
}

}  // namespace korvex::dialogs
