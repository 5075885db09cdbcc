// Listing, deleting, editing and starting.
#include "dialogs/system/frm_add_remove.h"

#include <fmt/format.h>

#include <algorithm>

namespace korvex::dialogs {

using forms::Layout;
using namespace platform;

namespace {

constexpr std::string_view kNoUninstall = "This entry does not support an uninstall.";
constexpr std::string_view kNotRemoved = "Entry could not be removed.";

std::string stateText(const UninstallProgram& program) {
  if (program.file.empty()) return std::string(kNoUninstall);
  switch (program.state) {
    case UninstallProgram::State::Found:
      return fmt::format("{} is there.", program.file);
    case UninstallProgram::State::Missing:
      return fmt::format("{} is missing: the entry may be stale.", program.file);
    case UninstallProgram::State::Unknown:
      break;
  }
  return fmt::format("Whether {} is there cannot be told from here.", program.file);
}

}  // namespace

frmAddRemove::frmAddRemove(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Add/Remove Programs entries", parts),
      entries_(parts.session) {
  describe();
  arrange();
  lstPrograms.Click += [this] { showSelected(); };
  cboDeleted.Click += [this] { showWhatCanBeDone(); };
  onPress(cmdDelete, [this] { cmdDelete_Click(); });
  onPress(cmdEdit, [this] { cmdEdit_Click(); });
  onPress(cmdRunUninstall, [this] { cmdRunUninstall_Click(); });
  onPress(cmdTakeBack, [this] { cmdTakeBack_Click(); });
  cmdDone.Click += [this] { close(); };
}

void frmAddRemove::describe() {
  lstPrograms.WhatsThis =
      "What Add/Remove Programs of the Control Panel lists: the subkeys with a display name of "
      "HKEY_LOCAL_MACHINE\\" +
      UninstallEntries::keyOf("") +
      ". Deleting one takes it out of that list only; the program stays where it is.";
  txtCommand.WhatsThis =
      "The value UninstallString of the entry, or where that is empty QuietUninstallString.";
  cmdDone.ToolTipText = "Close this window";
}

void frmAddRemove::arrange() {
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {of(lblPrograms), of(lstPrograms),
       Layout::grid(2, {of(lblCommand), of(txtCommand), of(lblKey), of(txtKey)}), of(lblState),
       Layout::row({of(cmdDelete), of(cmdEdit), of(cmdRunUninstall), Layout::space()}),
       Layout::row(
           {of(lblDeleted), of(cboDeleted), of(cmdTakeBack), Layout::space(), of(cmdDone)})});
}

void frmAddRemove::readMachine() {
  for (forms::Control* control :
       std::initializer_list<forms::Control*>{&lstPrograms, &txtCommand, &txtKey}) {
    control->Enabled = true;
  }
  lstPrograms.ToolTipText = "The entries that Add/Remove Programs of the Control Panel shows";
  txtCommand.ToolTipText = "What Windows starts to uninstall the selected program";
  txtKey.ToolTipText = "Where the selected entry stands in the registry";
  cboDeleted.ToolTipText = "Entries that were deleted here, the last one first";
  p_InitializeListBox();
  cboDeleted.Clear();
  removed_ = entries_.removed();
  for (const auto& item : removed_) {
    cboDeleted.AddItem(fmt::format("{} ({})", item.name, item.when));
  }
  if (!removed_.empty()) cboDeleted.ListIndex = 0;
  showSelected();
}

void frmAddRemove::p_InitializeListBox() {
  session().trace.enter("[frmAddRemove_p_InitializeListBox]");
  lstPrograms.Clear();
  const Status status = entries_.read(shown_);
  noteRead(status);
  if (status != ERROR_SUCCESS) shown_.clear();
  for (const UninstallEntry& entry : shown_) lstPrograms.AddItem(entry.text);
  StatusText = fmt::format("{} {}", shown_.size(), shown_.size() == 1 ? "entry" : "entries");
}

void frmAddRemove::showSelected() {
  const int selected = lstPrograms.ListIndex;
  const bool any = selected >= 0;
  txtCommand.Text = any ? shown_[selected].command.text() : "";
  txtKey.Text =
      any ? "HKEY_LOCAL_MACHINE\\" + UninstallEntries::keyOf(shown_[selected].subKey) : "";
  lblState.Caption = any ? forms::captionOf(stateText(entries_.programOf(shown_[selected]))) : "";
  showWhatCanBeDone();
}

// The buttons stay usable without a selection, and say then that there is none.
void frmAddRemove::showWhatCanBeDone() {
  const std::string none = "There is no program that can be uninstalled.";
  const auto offer = [&](forms::CommandButton& button, const char* toolTip) {
    button.Enabled = !shown_.empty();
    button.ToolTipText = shown_.empty() ? none : toolTip;
  };
  offer(cmdDelete, "Takes the selected entry out of the list; it is kept and can be taken back");
  offer(cmdEdit, "Changes what Windows starts to uninstall the selected program");
  offer(cmdRunUninstall, "Starts the uninstall command of the selected program on the machine");
  cboDeleted.Enabled = !removed_.empty();
  cmdTakeBack.Enabled = cboDeleted.ListIndex >= 0;
  const std::string nothing = "Nothing was deleted here.";
  if (removed_.empty()) cboDeleted.ToolTipText = nothing;
  cmdTakeBack.ToolTipText =
      removed_.empty() ? nothing : "Puts the deleted entry back as it was, with all its values";
}

void frmAddRemove::select(const std::string& subKey) {
  const auto found = std::ranges::find(shown_, subKey, &UninstallEntry::subKey);
  lstPrograms.ListIndex = found == shown_.end() ? -1 : static_cast<int>(found - shown_.begin());
}

const UninstallEntry* frmAddRemove::chosen() {
  const int selected = lstPrograms.ListIndex;
  if (selected < 0) {
    session().trace.add("NO_SELECTION");
    StatusText = "Select an entry first.";
    return nullptr;
  }
  bool same = false;
  const Status status = entries_.isAsShown(shown_[selected], same);
  if (same) return &shown_[selected];
  session().trace.dump("lRetVal&", status);
  const std::string subKey = shown_[selected].subKey;
  readAgain();
  select(subKey);
  tell(status == ERROR_SUCCESS
           ? "The entry has been changed meanwhile. Please choose once more."
           : fmt::format("The entry could not be read: {}.\r\nNothing was changed.",
                         describeStatus(status)),
       status == ERROR_SUCCESS ? kIconInformation : kIconExclamation);
  return nullptr;
}

void frmAddRemove::cmdDelete_Click() {
  session().trace.enter("[frmAddRemove_cmdDelete_Click]");
  if (lstPrograms.ListIndex >= 0 &&
      !askYesNo(lstPrograms.selectedItem() +
                "\r\n\r\nAre you certain you want to remove this entry?")) {
    session().trace.add("CANCEL_SELECTION");
    return;
  }
  const UninstallEntry* entry = chosen();
  if (entry == nullptr) return;
  const int selected = lstPrograms.ListIndex;
  Status status = ERROR_SUCCESS;
  const bool done = engine::changeOrTell(session(), kNotRemoved, kIconInformation, [&] {
    status = entries_.remove(*entry);
    return status;
  });
  session().trace.dump("lRet&", status);
  if (!done) {
    StatusText = status == ERROR_SUCCESS
                     ? std::string(kNotRemoved)
                     : fmt::format("{} {}.", kNotRemoved, describeStatus(status));
    return;
  }
  readAgain();
  lstPrograms.ListIndex = std::min(selected, lstPrograms.ListCount() - 1);
  tell("Entry successfully removed.");
}

void frmAddRemove::cmdEdit_Click() {
  session().trace.enter("[frmAddRemove_cmdEdit_Click]");
  const UninstallEntry* entry = chosen();
  if (entry == nullptr) return;
  const std::string present = entry->command.text();
  const auto typed = session().prompts().inputBox("Edit the uninstall string for " + entry->name,
                                                  "Uninstall string edit box", present);
  const std::string wanted = typed.value_or("");
  bool done = false;
  if (wanted.empty()) {
    session().trace.add("USER_CANCEL");
  } else if (wanted == present) {
    StatusText = "The uninstall command is what it was.";
  } else {
    const std::string subKey = entry->subKey;
    done = engine::changeAtOnce(session(), "The uninstall command",
                                [&] { return entries_.edit(*entry, wanted); });
    readAgain();
    select(subKey);
    if (done) StatusText = "The uninstall command has been changed.";
  }
  session().trace.dump("sRegVal$", present);
  session().trace.dump("bPass", done);
  session().trace.dump("sInputRet$", wanted);
}

void frmAddRemove::cmdRunUninstall_Click() {
  session().trace.enter("[frmAddRemove_cmdRunUninstall_Click]");
  if (lstPrograms.ListIndex >= 0 && !askYesNo("Launch the selected uninstaller?")) return;
  const UninstallEntry* entry = chosen();
  if (entry == nullptr) return;
  if (entries_.commandOf(*entry).empty()) return tell(kNoUninstall);
  std::string message;
  const Status status = entries_.start(*entry, message);
  session().trace.dump("lRetVal&", status);
  if (status != ERROR_SUCCESS) {
    return tell(message.empty() ? fmt::format("The uninstaller could not be started: {}.",
                                              describeStatus(status))
                                : message,
                kIconExclamation);
  }
  tell("Uninstall was successfully started.");
  readAgain();
}

void frmAddRemove::cmdTakeBack_Click() {
  session().trace.enter("[frmAddRemove_cmdTakeBack_Click]");
  const int selected = cboDeleted.ListIndex;
  if (selected < 0) return;
  const engine::TakenAway::Item item = removed_[selected];
  Status status = ERROR_SUCCESS;
  const std::string what = fmt::format("{} could not be taken back", item.name);
  const bool done = engine::changeAtOnce(session(), "The list of programs", [&] {
    status = entries_.takeBack(item);
    return status;
  });
  readAgain();
  if (done) {
    select(item.key.substr(item.key.rfind('\\') + 1));
    StatusText = fmt::format("{} is listed again.", item.name);
  } else if (status == ERROR_ALREADY_EXISTS) {
    StatusText = fmt::format("{}: an entry of that key is there again.", what);
  }
}

}  // namespace korvex::dialogs
