// Listing drives and folders.
#include "dialogs/system/frm_path_selecter.h"

#include <fmt/format.h>

#include "engine/at_once.h"
#include "engine/folder_choice.h"
#include "foundation/error_handler.h"

namespace korvex::dialogs {

using forms::Layout;
using platform::Status;

namespace {

constexpr std::string_view kIndent = "  ";

std::string joined(const std::string& folder, const std::string& name) {
  return folder.back() == '\\' ? folder + name : folder + '\\' + name;
}

bool isFull(std::string_view path) { return path.size() >= 2 && path[1] == ':'; }

// "C:\", "C:\WINNT", "C:\WINNT\system32": the folders on the way, the last one included.
std::vector<std::string> wayTo(const std::string& path) {
  std::vector<std::string> way{path.substr(0, 3)};
  for (std::size_t end = 3; end < path.size();) {
    end = std::min(path.find('\\', end + 1), path.size());
    way.push_back(path.substr(0, end));
  }
  return way;
}

std::string nameOf(const std::string& path) {
  return path.size() <= 3 ? path : path.substr(path.rfind('\\') + 1);
}

}  // namespace

frmPathSelecter::frmPathSelecter(foundation::Session& session, FolderDesk& desk)
    : Form(kName, "Browse"), session_(session), desk_(desk) {
  drvDrive.ToolTipText = "The machine's drives";
  DirFolder.ToolTipText = "The machine's folders; a double click opens one";
  txtCreateDirName.ToolTipText = "The folder to be used; one that is not there yet can be made";
  cmdOpen.ToolTipText = "Show what is in the selected folder";
  cmdOK.ToolTipText = "Use the folder whose name stands here";
  cmdCancel.ToolTipText = "Choose none";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column({of(lblInfo), Layout::row({of(lblDrive), of(drvDrive), Layout::space()}),
                           of(lblFolder), of(DirFolder), of(lblCreateDirName), of(txtCreateDirName),
                           Layout::row({of(cmdOpen), Layout::space(), of(cmdOK), of(cmdCancel)})});
  drvDrive.Click += [this] { trap("drvDrive_Click", &frmPathSelecter::drvDrive_Click); };
  DirFolder.Click += [this] { trap("DirFolder_Click", &frmPathSelecter::DirFolder_Click); };
  DirFolder.DblClick += [this] { trap("DirFolder_DblClick", &frmPathSelecter::openSelected); };
  cmdOpen.Click += [this] { trap("cmdOpen_Click", &frmPathSelecter::openSelected); };
  cmdOK.Click += [this] { trap("cmdOK_Click", &frmPathSelecter::cmdOK_Click); };
  cmdCancel.Click += [this] { close(); };
}

void frmPathSelecter::trap(const char* routine, void (frmPathSelecter::*handler)()) {
  foundation::guarded(session_, fmt::format("{}.{}", kName, routine),
                      [this, handler] { (this->*handler)(); });
}

void frmPathSelecter::Load() {
  desk_.folder.reset();
  lblInfo.Caption =
      desk_.prompt.empty() ? "Choose a folder of the machine." : forms::captionOf(desk_.prompt);
  trap("Form_Load", &frmPathSelecter::listDrives);
}

void frmPathSelecter::listDrives() {
  filling_ = true;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    const std::string drive = std::string(1, letter) + ":\\";
    if (session_.files().exists(drive)) drvDrive.AddItem(drive);
  }
  filling_ = false;
  const std::string start = session_.g_sRoot.empty() ? "C:\\" : session_.g_sRoot;
  for (int i = 0; i < drvDrive.ListCount(); ++i) {
    if (drvDrive.items()[static_cast<std::size_t>(i)] == start) drvDrive.ListIndex = i;
  }
  if (drvDrive.ListIndex < 0 && drvDrive.ListCount() > 0) drvDrive.ListIndex = 0;
  if (drvDrive.ListCount() == 0) StatusText = "This machine has no drive that can be read.";
}

void frmPathSelecter::drvDrive_Click() {
  if (!filling_) openFolder(drvDrive.selectedItem());
}

bool frmPathSelecter::openFolder(const std::string& path) {
  std::vector<platform::FileEntry> entries;
  const Status status = session_.files().list(joined(path, "*"), entries);
  session_.trace.dump("lRetVal&", status);
  if (status != platform::ERROR_SUCCESS && status != platform::ERROR_FILE_NOT_FOUND) {
    StatusText = fmt::format("{} could not be read: {}.", path, platform::describeStatus(status));
    return false;
  }
  StatusText = "";
  open_ = path;
  filling_ = true;
  DirFolder.Clear();
  paths_.clear();
  std::string indent;
  int selected = -1;
  for (const std::string& folder : wayTo(path)) {
    DirFolder.AddItem(indent + nameOf(folder));
    paths_.push_back(folder);
    indent += kIndent;
    ++selected;
  }
  for (const platform::FileEntry& entry : entries) {
    if ((entry.attributes & platform::FILE_ATTRIBUTE_DIRECTORY) == 0) continue;
    DirFolder.AddItem(indent + entry.name);
    paths_.push_back(joined(path, entry.name));
  }
  DirFolder.ListIndex = selected;
  filling_ = false;
  txtCreateDirName.Text = path;
  return true;
}

void frmPathSelecter::DirFolder_Click() {
  const int selected = DirFolder.ListIndex;
  if (filling_ || selected < 0) return;
  txtCreateDirName.Text = paths_[static_cast<std::size_t>(selected)];
}

void frmPathSelecter::openSelected() {
  const int selected = DirFolder.ListIndex;
  // A copy: opening it makes the list anew.
  if (selected >= 0) openFolder(std::string(paths_[static_cast<std::size_t>(selected)]));
}

std::string frmPathSelecter::typedFolder() const {
  const std::string typed = engine::tidyFolder(txtCreateDirName.Text.get());
  if (typed.empty() || isFull(typed)) return typed;
  if (typed.starts_with("\\\\")) return typed;
  if (typed.front() == '\\') return open_.substr(0, 2) + typed;
  // The dots of a relative name count from the folder that is open.
  return open_.empty() ? typed : engine::tidyFolder(joined(open_, txtCreateDirName.Text.get()));
}

void frmPathSelecter::cmdOK_Click() {
  const std::string folder = typedFolder();
  if (folder.empty()) {
    engine::tell(session_, "Type the name of a folder or select one.", platform::kIconExclamation);
    return;
  }
  if (!engine::agreeOnFolder(session_, folder)) return;
  desk_.folder = folder;
  close();
}

}  // namespace korvex::dialogs
