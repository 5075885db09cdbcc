// The pages of the wizard, and what leaving each of them does.
#include "dialogs/shell/frm_right_click.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

#include "platform/text/text.h"
#include "platform/trimmed.h"

namespace korvex::dialogs {

using forms::Layout;
using platform::ERROR_SUCCESS;
using platform::Status;

namespace {

enum Page {
  kIntroduction = 0,
  kFileTypes = 1,
  kEntry = 101,
  kLastEntry = 102,
  kAdded = 200,
  kRemoval = 201,
  kRemoved = 202,
};

constexpr const char* kPlaceText = "Place text here";
constexpr const char* kEnterPath = "Enter path here";
constexpr std::string_view kFilter =
    "All Files (*.*)|*.*|Executable Files"
    "(*.exe)|*.exe";

std::string counted(std::size_t count) {
  return fmt::format("{} {}", count, count == 1 ? "entry" : "entries");
}

}  // namespace

frmRightClick::frmRightClick(const DialogParts& parts)
    : DirectDialog(kName, "Korvex...for Power Users - Right Click Menus", parts),
      entries_(parts.session) {
  pages_ = {{kIntroduction,
             &fraIntroduction,
             {&lblIntroduction, &lblGuide, &optAdd, &optRemove, &txtPresent, &lblPresent}},
            {kFileTypes, &fraFileTypes, {&lblFileTypes, &lstFileTypes}},
            {kEntry,
             &fraEntry,
             {&lblEnterText, &txtText, &lblText, &lblEnterPath, &txtPath, &lblPath, &cmdBrowse,
              &lblClass, &lblCommit}},
            {kAdded, &fraAdded, {&lblAdded, &lblReRun}},
            {kRemoval, &fraRemoval, {&lblRemoval, &lstEntries, &txtEntry, &lblEntry, &cmdTakeBack}},
            {kRemoved, &fraRemoved, {&lblRemoved, &lblRemovedText}}};
  for (const std::string_view type : RightClickEntries::DetermineRightClickOptions()) {
    lstFileTypes.AddItem(std::string(type));
  }
  describe();
  arrange();
  onPress(cmdWizardNext, [this] { cmdWizardNext_Click(); });
  onPress(cmdBack, [this] { cmdBack_Click(); });
  onPress(cmdBrowse, [this] { cmdBrowse_Click(); });
  onPress(cmdTakeBack, [this] { cmdTakeBack_Click(); });
  lstEntries.SelectionChange += [this] { showSelected(); };
  cmdCancel.Click += [this] { close(); };
}

void frmRightClick::describe() {
  lblIntroduction.Caption =
      "Right click menus are context sensitive menus that appear whenever you right click on "
      "objects within the Operating System.";
  lblGuide.Caption =
      "This Wizard will guide you through the process of creating your own context sensitive right "
      "click menus. Use these menus from within Explorer. If you have a file type that is "
      "registered or is not registered, add an option to a right click menu that will allow you to "
      "open that file in an application other than the one it is registered with.";
  lblFileTypes.Caption =
      "On the following pages you will be presented with a list of registered file types and an "
      "option for non-registered types that will allow you to add right click options to the "
      "context sensistive menus that appear when right clicking on those file types in Explorer.";
  lblEnterText.Caption =
      "Enter text exactly as you want it to appear in the right-click menu. Place an ampersand in "
      "front of the letter you wish to be the accelarator character.";
  lblEnterPath.Caption =
      "Enter the fully qualified path for the secondary application you wish to use to launch this "
      "file type:";
  lblAdded.Caption =
      "Congratulations! You have successfully created context sensitive right click menu additions "
      "for the file type(s) you selected.";
  lblReRun.Caption =
      "If you would like to change these menus or remove them altogether, simply re-run this "
      "Wizard and select the option for removal.";
  lblRemoval.Caption =
      "Select the entries on the right that you would like to remove from your context sensitive "
      "right click menus. Multiple selections are possible. Clicking Next will remove the entries "
      "you have selected on the right.";
  lblRemoved.Caption = "Removal Complete!";
  lblRemovedText.Caption = "You have successfully removed the right click menu(s) you desired.";
  optAdd.ToolTipText = "Goes on to the file types";
  optRemove.ToolTipText = "Goes on to the entries that Korvex has added";
  txtPresent.ToolTipText = "What Korvex has added to right click menus by now";
  lstFileTypes.AccessibleName = "File types";
  lstFileTypes.ToolTipText = "The file types that get a further entry; several can be selected";
  lstFileTypes.WhatsThis =
      "Each of them is asked for on a page of its own. UNKNOWN stands for files whose type is not "
      "registered.";
  txtText.ToolTipText = "What the menu says: &Edit with Notes";
  txtText.WhatsThis =
      "The letter behind the ampersand chooses the entry from the keyboard. && shows an ampersand.";
  txtPath.ToolTipText = "The full path of a program of this machine: C:\\Tools\\notes.exe";
  txtPath.WhatsThis =
      "The command that is written puts path and file each in quotes, so that both may have "
      "blanks: \"C:\\Program Files\\x.exe\" \"%1\".";
  cmdBrowse.ToolTipText = "Looks for the program";
  lstEntries.AccessibleName = "Entries that Korvex has added";
  lstEntries.ToolTipText = "Class and verb of each entry that Korvex has added";
  lstEntries.WhatsThis =
      "Each is a key HKEY_CLASSES_ROOT\\class\\shell\\verb. Entries of other programs are neither "
      "listed nor removed. An entry that another program has changed since is kept when it is "
      "removed, and can be taken back.";
  txtEntry.ToolTipText = "File types, menu text and command of the first selected entry";
  cmdBack.ToolTipText = "Shows the page before this one";
  cmdCancel.ToolTipText = "Closes the wizard; what has been committed stays";
}

void frmRightClick::arrange() {
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  const auto group = [](forms::Frame& frame, std::vector<Layout> inside) {
    Layout part = Layout::group("", std::move(inside));
    part.control = &frame;
    return part;
  };
  layout = Layout::column(
      {group(fraIntroduction, {of(lblIntroduction), of(lblGuide), of(optAdd), of(optRemove),
                               of(lblPresent), of(txtPresent)}),
       group(fraFileTypes, {Layout::row({of(lblFileTypes), of(lstFileTypes)})}),
       group(fraEntry,
             {of(lblEnterText), Layout::row({of(lblText), of(txtText)}), of(lblEnterPath),
              Layout::row({of(lblPath), of(txtPath), of(cmdBrowse)}), of(lblClass), of(lblCommit)}),
       group(fraAdded, {of(lblAdded), of(lblReRun)}),
       group(fraRemoval, {Layout::row({of(lblRemoval), of(lstEntries)}),
                          Layout::row({of(lblEntry), of(txtEntry)}),
                          Layout::row({of(cmdTakeBack), Layout::space()})}),
       group(fraRemoved, {of(lblRemoved), of(lblRemovedText)}),
       Layout::row({Layout::space(), of(cmdBack), of(cmdWizardNext), of(cmdCancel)})});
}

void frmRightClick::readMachine() {
  session().trace.enter("[frmRightClick.Form_Load]");
  steps_.clear();
  added_ = 0;
  optAdd.Value = true;
  lstFileTypes.ListIndex = -1;
  txtText.Text = "";
  txtPath.Text = "";
  StatusText = "";
  p_PageCount(kIntroduction);
  showPresent();
}

// Also for Back: what was committed meanwhile is one of them.
void frmRightClick::showPresent() {
  noteRead(entries_.p_DetermineRightClickEntries(shown_));
  std::string lines;
  for (const RightClickEntry& entry : shown_) {
    lines += fmt::format("{}: {}  {}\r\n", entry.p_FillType(), entry.text, entry.command);
  }
  txtPresent.Text = lines.empty() ? "There is no entry that Korvex has added." : lines;
}

void frmRightClick::p_PageCount(int page) {
  session().trace.enter("[p_PageCount]");
  session().trace.dump("iPage%", page);
  page_ = page;
  const int shown = page == kLastEntry ? static_cast<int>(kEntry) : page;
  for (const PageParts& one : pages_) {
    one.frame->Visible = one.page == shown;
    for (forms::Control* control : one.controls) control->Visible = one.page == shown;
  }
  if (shown == kEntry) showEntryPage();
  if (shown == kRemoval) showRemovalPage();
  showButtons();
}

void frmRightClick::showButtons() {
  const bool done = page_ == kAdded || page_ == kRemoved;
  cmdWizardNext.Caption = done ? "&Done" : page_ == kLastEntry ? "&Finish" : "&Next";
  cmdWizardNext.ToolTipText = done                  ? "Closes the wizard"
                              : page_ == kRemoval   ? "Removes the selected entries"
                              : page_ == kLastEntry ? "Writes this entry"
                              : page_ == kEntry     ? "Writes this entry, and goes on"
                                                    : "Goes on to the next page";
  cmdCancel.Visible = !done;
  cmdBack.Visible = !done && page_ != kIntroduction;
}

void frmRightClick::showEntryPage() {
  const Step& step = steps_[at_];
  const std::string button = page_ == kLastEntry ? "Finish" : "Next";
  fraEntry.Caption = fmt::format("File type {} ({} of {})", step.type, at_ + 1, steps_.size());
  lblClass.Caption = forms::captionOf(classText(step.type));
  lblCommit.Caption =
      "Selecting " + button +
      (page_ == kLastEntry ? " commits this entry to the Registry. Press Finish when you are ready "
                             "to create the right click menu."
                           : " commits this entry to the Registry. Press Next when you are ready "
                             "to move to the next file type.");
  txtText.Text = step.text;
  txtPath.Text = step.path;
}

// Whose menu it is: several types share one class, and a class that no type names shows nothing.
std::string frmRightClick::classText(const std::string& type) const {
  std::string className;
  bool registered = false;
  const Status status = entries_.classOf(type, className, registered);
  if (status != ERROR_SUCCESS) {
    return fmt::format("The class of {} cannot be read: {}.", type,
                       platform::describeStatus(status));
  }
  if (type == kUnknownType) return "The entry is for all files whose type is not registered.";
  if (!registered) {
    return fmt::format(
        "{} is not registered. The entry is written for the class {}, and appears as soon as {} is "
        "registered under that name.",
        type, className, type);
  }
  std::vector<std::string_view> others;
  for (const std::string_view other : RightClickEntries::DetermineRightClickOptions()) {
    std::string otherClass;
    bool named = false;
    if (other != type && entries_.classOf(other, otherClass, named) == ERROR_SUCCESS && named &&
        platform::sameName(otherClass, className)) {
      others.push_back(other);
    }
  }
  if (others.empty()) return fmt::format("{} is registered as {}.", type, className);
  return fmt::format("{} is registered as {}, and so is {}: the entry appears for all of them.",
                     type, className, fmt::join(others, ", "));
}

void frmRightClick::cmdWizardNext_Click() {
  session().trace.enter("[frmRightClick_cmdWizardNext]");
  switch (page_) {
    case kIntroduction:
      return p_PageCount(optRemove.Value ? kRemoval : kFileTypes);
    case kFileTypes:
      return chooseTypes();
    case kEntry:
    case kLastEntry:
      if (p_DoTheActualWorkAdd()) nextType();
      return;
    case kRemoval:
      return DoTheActualWorkRemove();
    default:
      close();
  }
}

void frmRightClick::cmdBack_Click() {
  const bool onEntry = page_ == kEntry || page_ == kLastEntry;
  if (onEntry) keepTyped();
  if (onEntry && at_ > 0) {
    --at_;
    return p_PageCount(kEntry);
  }
  p_PageCount(onEntry ? kFileTypes : kIntroduction);
  if (page_ == kIntroduction) showPresent();
}

// What was typed for a type that is still selected stays.
void frmRightClick::chooseTypes() {
  const std::vector<std::string> types = lstFileTypes.selectedItems();
  if (types.empty()) return tell("You must make a selection before continuing.");
  std::vector<Step> steps;
  for (const std::string& type : types) {
    const auto known = std::ranges::find(steps_, type, &Step::type);
    steps.push_back(known == steps_.end() ? Step{type, "", "", {}} : *known);
  }
  steps_ = std::move(steps);
  at_ = 0;
  p_PageCount(steps_.size() == 1 ? kLastEntry : kEntry);
}

void frmRightClick::keepTyped() {
  steps_[at_].text = txtText.Text.get();
  steps_[at_].path = txtPath.Text.get();
}

// The same entry for many types needs to be typed once only.
void frmRightClick::nextType() {
  if (page_ == kLastEntry) return p_PageCount(kAdded);
  const Step before = steps_[at_];
  Step& step = steps_[++at_];
  if (step.text.empty()) step.text = before.text;
  if (step.path.empty()) step.path = before.path;
  p_PageCount(at_ + 1 == steps_.size() ? kLastEntry : kEntry);
}

void frmRightClick::refuse(const RightClickEntries::Refusal& refusal) {
  const bool ofText = refusal.field == RightClickEntries::Refusal::Field::Text;
  forms::TextBox& box = ofText ? txtText : txtPath;
  if (platform::trimmed(box.Text.get(), " \t\"&").empty()) {
    box.Text = ofText ? kPlaceText : kEnterPath;
  }
  tell(refusal.message);
}

bool frmRightClick::p_DoTheActualWorkAdd() {
  session().trace.enter("[p_DoTheActualWorkAdd]");
  // What a field shows that was left empty is no entry.
  if (txtText.Text.get() == kPlaceText) txtText.Text = "";
  if (txtPath.Text.get() == kEnterPath) txtPath.Text = "";
  keepTyped();
  Step& step = steps_[at_];
  if (const auto refusal = entries_.refusalOf(step.type, step.text, step.path)) {
    refuse(*refusal);
    return false;
  }
  RightClickEntries::Plan plan;
  const Status status = entries_.plan(step.type, step.text, step.path, plan);
  session().trace.dump("lRetVal&", status);
  if (status != ERROR_SUCCESS) {
    tell(fmt::format("The right click menu of {} could not be read: {}.\r\nNothing was changed.",
                     step.type, platform::describeStatus(status)),
         platform::kIconExclamation);
    return false;
  }
  if (!agreesToReplace(plan)) return false;
  const bool done = engine::changeAtOnce(session(), "The right click menu of " + step.type,
                                         [&] { return commit(step, plan.entry); });
  if (!done) return false;
  if (!step.committed) ++added_;
  step.committed = plan.entry;
  StatusText = fmt::format("{} written.", counted(added_));
  return true;
}

// One that was added for another type of the same class is not meant by whom types it for this one.
bool frmRightClick::agreesToReplace(const RightClickEntries::Plan& plan) const {
  if (!plan.replaced || plan.replaced->command == plan.entry.command ||
      plan.replaced->types == plan.entry.types) {
    return true;
  }
  return askYesNo(fmt::format("The class {} has this entry already, for {}:\r\n{}\r\nReplace it?",
                              plan.entry.className, plan.replaced->p_FillType(),
                              plan.replaced->command));
}

// An entry that this page wrote before, under another text, makes room for the new one.
Status frmRightClick::commit(const Step& step, const RightClickEntry& entry) {
  const auto& before = step.committed;
  const bool goes = before && before->types.size() == 1 && before->key() != entry.key();
  const Status status =
      goes ? engine::missingIsFine(entries_.remove(*before)) : static_cast<Status>(ERROR_SUCCESS);
  return status == ERROR_SUCCESS ? entries_.add(entry) : status;
}

void frmRightClick::cmdBrowse_Click() {
  const auto picked = session().prompts().pickFile({.title = "Choose the program",
                                                    .filter = std::string(kFilter),
                                                    .fileName = {},
                                                    .folder = {}});
  if (picked) txtPath.Text = *picked;
}

// False where the list is not whole.
bool frmRightClick::p_FillEntries() {
  lstEntries.Clear();
  const Status status = entries_.p_DetermineRightClickEntries(shown_);
  session().trace.dump("lRetVal&", status);
  for (const RightClickEntry& entry : shown_) lstEntries.AddItem(entry.line());
  showSelected();
  cmdTakeBack.Enabled = !entries_.kept().empty();
  cmdTakeBack.ToolTipText = cmdTakeBack.Enabled
                                ? "Puts back what was removed last and not as Korvex wrote it"
                                : "Nothing was kept: what was removed was as Korvex wrote it.";
  if (status == ERROR_SUCCESS) return true;
  tellUnread(status);
  return false;
}

void frmRightClick::tellUnread(Status status) {
  tell(fmt::format("The entries could not be read: {}.\r\nNothing was changed.",
                   platform::describeStatus(status)),
       platform::kIconExclamation);
}

void frmRightClick::showRemovalPage() {
  if (p_FillEntries()) {
    StatusText =
        shown_.empty() ? "There is no entry that Korvex has added." : counted(shown_.size());
  }
}

void frmRightClick::showSelected() {
  const int first = lstEntries.ListIndex;
  if (first < 0 || first >= static_cast<int>(shown_.size())) {
    txtEntry.Text = "";
    return;
  }
  const RightClickEntry& entry = shown_[static_cast<std::size_t>(first)];
  RightClickEntries::State state{};
  const Status status = entries_.stateOf(entry, state);
  const char* const note = status != ERROR_SUCCESS                      ? " (unreadable)"
                           : state == RightClickEntries::State::Missing ? " (missing by now)"
                           : state == RightClickEntries::State::Changed ? " (changed since)"
                           : session().files().exists(entry.program())  ? ""
                                                                        : " (no such program)";
  txtEntry.Text = fmt::format("{}: {}  {}{}", entry.p_FillType(), entry.text, entry.command, note);
}

void frmRightClick::DoTheActualWorkRemove() {
  session().trace.enter("[DoTheActualWorkRemove]");
  const std::vector<int> selected = lstEntries.selectedIndices();
  if (selected.empty()) return tell("You have not selected an item for removal.");
  std::vector<RightClickEntry> chosen;
  for (const int index : selected) chosen.push_back(shown_[static_cast<std::size_t>(index)]);
  std::vector<RightClickEntry> now;
  const Status status = entries_.p_DetermineRightClickEntries(now);
  const bool asShown = std::ranges::all_of(chosen, [&now](const RightClickEntry& entry) {
    return std::ranges::find(now, entry) != now.end();
  });
  if (status != ERROR_SUCCESS) return tellUnread(status);
  if (!asShown) {
    p_FillEntries();
    return tell("The entries have been changed meanwhile. Please choose once more.");
  }
  const std::string failures = remove(chosen);
  const bool flushed = engine::finishAtOnce(session(), "The right click menus", ERROR_SUCCESS);
  if (failures.empty() && flushed) return p_PageCount(kRemoved);
  p_FillEntries();
  if (!failures.empty()) {
    tell("Some entries could not be removed and are still listed:" + failures,
         platform::kIconExclamation);
  }
}

// Each whole or not at all; what is wrong with those that stay, a line for each.
std::string frmRightClick::remove(const std::vector<RightClickEntry>& chosen) {
  std::string failures;
  std::size_t removed = 0;
  for (const RightClickEntry& entry : chosen) {
    platform::RegistryChange change(registry());
    Status status = change.status();
    if (status == ERROR_SUCCESS) status = entries_.remove(entry);
    if (status == ERROR_SUCCESS) status = change.commit();
    session().trace.dump("lRetVal&", status);
    if (status == ERROR_SUCCESS) {
      ++removed;
    } else {
      failures += fmt::format("\r\n{}: {}", entry.line(), platform::describeStatus(status));
    }
  }
  StatusText = fmt::format("{} removed.", counted(removed));
  return failures;
}

void frmRightClick::cmdTakeBack_Click() {
  const std::vector<engine::TakenAway::Item> kept = entries_.kept();
  if (kept.empty()) return;
  const engine::TakenAway::Item& last = kept.front();
  if (!askYesNo(fmt::format("This was taken away on {}:\r\n{}\r\nPut it back as it was?", last.when,
                            last.name))) {
    return;
  }
  const bool done =
      engine::changeAtOnce(session(), last.name, [&] { return entries_.takeBack(last); });
  p_FillEntries();
  if (done) StatusText = last.name + " is back.";
}

}  // namespace korvex::dialogs
