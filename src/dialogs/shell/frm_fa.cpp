// Choosing types, saving and restoring them.
#include "dialogs/shell/frm_fa.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "forms/long_work.h"
#include "foundation/error_handler.h"
#include "platform/text/text.h"

namespace korvex::dialogs {

using backup::AssociationOutcome;
using backup::FileType;
using forms::Layout;
using foundation::kCrLf;
using namespace platform;

namespace {

// What the list can show; the folders are those of saved associations.
struct Source {
  const char* caption;
  const char* subFolder;
};
constexpr std::array kSources{
    Source{"Registered types", ""},
    Source{"Saved types", ""},
    Source{"As they were before the last restore", "\\Before restore"},
    Source{"As they were before that was taken back", "\\Before taking back"},
};

std::string lineOf(const FileType& type) {
  std::string line = type.extension;
  if (!type.className.empty()) line += "   " + type.className;
  if (!type.description.empty()) line += "   " + type.description;
  return line;
}

std::string counted(std::size_t count, std::string_view what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

}  // namespace

frmFA::frmFA(foundation::Session& session, forms::FormBook& formBook,
             backup::RegistryBacker& backer, backup::RestoreDesk& desk)
    : Form(kName, "Korvex...for Power Users - File Associations"),
      session_(session),
      formBook_(formBook),
      backer_(backer),
      desk_(desk) {
  for (const Source& source : kSources) cboShow.AddItem(source.caption);
  cboShow.ListIndex = 0;
  cboShow.ToolTipText = "The types of this machine, or those that were saved";
  txtFilter.ToolTipText = "Shows only types that hold this text";
  lstFA.ToolTipText = "What is ticked is saved, or restored";
  cmdSelectAll.ToolTipText = "Tick every type in the list";
  cmdClearAll.ToolTipText = "Tick nothing";
  cboTemplates.ToolTipText = "Choose a template to tick its types, or type a name for a new one";
  cmdRemoveTemplate.ToolTipText = "Delete the template";
  cmdApply.ToolTipText = "Save the ticked types, and the choice where a template is named";
  cmdRestore.ToolTipText = "Shows what would change, and restores the ticked types";
  cmdDone.ToolTipText = "Close this window";
  const auto of = [](forms::Control& control) { return Layout::of(control); };
  layout = Layout::column(
      {Layout::grid(2, {of(lblShow), of(cboShow), of(lblFilter), of(txtFilter)}), of(lblFA),
       of(lstFA), Layout::row({of(cmdSelectAll), of(cmdClearAll), Layout::space()}),
       of(lblTemplates), Layout::row({of(cboTemplates), of(cmdRemoveTemplate)}),
       Layout::row({Layout::space(), of(cmdApply), of(cmdRestore), of(cmdDone)})});
  on(cboShow.Click, "cboShow_Click", &frmFA::p_InitializeFileAssoc);
  on(txtFilter.Change, "txtFilter_Change", &frmFA::fillList);
  on(cboTemplates.Click, "cboTemplates_Click", &frmFA::cboTemplates_Click);
  on(cboTemplates.Change, "cboTemplates_Change", &frmFA::showWhatIsTicked);
  on(cmdSelectAll.Click, "cmdSelectAll_Click", &frmFA::cmdSelectAll_Click);
  on(cmdClearAll.Click, "cmdClearAll_Click", &frmFA::cmdClearAll_Click);
  on(cmdRemoveTemplate.Click, "cmdRemoveTemplate_Click", &frmFA::cmdRemoveTemplate_Click);
  on(cmdApply.Click, "cmdApply", &frmFA::cmdApply_Click);
  on(cmdRestore.Click, "cmdRestore", &frmFA::cmdRestore_Click);
  cmdDone.Click += [this] { close(); };
  lstFA.ItemCheck += [this] {
    if (filling_) return;
    for (std::size_t i = 0; i < shown_.size(); ++i) {
      const std::string folded = foldName(shown_[i]);
      lstFA.isChecked(static_cast<int>(i)) ? (void)ticked_.insert(folded)
                                           : (void)ticked_.erase(folded);
    }
    showWhatIsTicked();
  };
}

void frmFA::on(forms::Event& event, std::string_view routine, void (frmFA::*handler)()) {
  event += [this, name = fmt::format("[{}.{}]", kName, routine), handler] {
    session_.trace.enter(name);
    foundation::guarded(session_, name, [this, handler] { (this->*handler)(); });
  };
}

void frmFA::Load() {
  foundation::guarded(session_, "frmFA.Form_Load", [this] {
    P_InitializeListWithTemplates();
    p_InitializeFileAssoc();
  });
}

void frmFA::P_InitializeListWithTemplates() {
  session_.trace.enter("[P_InitializeListWithTemplates]");
  const std::string text = cboTemplates.Text;
  filling_ = true;
  cboTemplates.Clear();
  for (const std::string& name : backup::associationTemplates(session_)) cboTemplates.AddItem(name);
  cboTemplates.Text = text;
  cboTemplates.ListIndex = namedTemplate();
  filling_ = false;
  showWhatIsTicked();
}

std::string frmFA::shownFolder() const {
  const auto source = static_cast<std::size_t>(std::max(0, cboShow.ListIndex.get()));
  return backup::associationFolder(session_) + kSources.at(source).subFolder;
}

void frmFA::p_InitializeFileAssoc() {
  session_.trace.enter("[p_InitializeFileAssoc]");
  types_ = showsRegistered() ? backup::registeredTypes(session_)
                             : backup::savedAssociations(session_, shownFolder());
  ticked_.clear();
  fillList();
}

void frmFA::fillList() {
  const std::string filter = foldName(txtFilter.Text.get());
  filling_ = true;
  lstFA.Clear();
  shown_.clear();
  for (const FileType& type : types_) {
    // What cannot be saved is not worth a line; what was saved, is.
    if (showsRegistered() && !type.canBeSaved()) continue;
    const std::string line = lineOf(type);
    if (!filter.empty() && foldName(line).find(filter) == std::string::npos) continue;
    lstFA.AddItem(line);
    lstFA.setChecked(lstFA.ListCount() - 1, ticked_.contains(foldName(type.extension)));
    shown_.push_back(type.extension);
  }
  filling_ = false;
  showWhatIsTicked();
}

void frmFA::showWhatIsTicked() {
  if (filling_) return;
  cmdApply.Enabled = showsRegistered() && !ticked_.empty();
  cmdRestore.Enabled = !showsRegistered() && !ticked_.empty();
  cmdClearAll.Enabled = !ticked_.empty();
  cmdSelectAll.Enabled = !shown_.empty();
  cmdRemoveTemplate.Enabled = namedTemplate() >= 0;
  StatusText = types_.empty() && !showsRegistered()
                   ? std::string("Nothing has been saved yet.")
                   : fmt::format("{} of {} ticked", ticked_.size(), counted(types_.size(), "type"));
}

// A template that is chosen ticks its types. One that is typed does not: on the way to a new name
// stand others, and they must not take the marks away.
void frmFA::cboTemplates_Click() {
  if (filling_ || cboTemplates.ListIndex < 0) return;
  std::vector<std::string> extensions;
  const std::string name = cboTemplates.Text;
  const Status status = backup::readTemplate(session_, name, extensions);
  if (status != ERROR_SUCCESS) {
    tell(fmt::format("The template {} cannot be read: {}.", name, describeStatus(status)),
         kIconExclamation);
    return;
  }
  ticked_.clear();
  for (const FileType& type : types_) {
    const auto same = [&](const std::string& one) { return sameName(one, type.extension); };
    const bool chosen = std::ranges::any_of(extensions, same);
    if (chosen && (!showsRegistered() || type.canBeSaved())) {
      ticked_.insert(foldName(type.extension));
    }
  }
  fillList();
}

int frmFA::namedTemplate() const {
  const auto& names = cboTemplates.items();
  const auto found = std::ranges::find_if(
      names, [this](const std::string& name) { return sameName(name, cboTemplates.Text.get()); });
  return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

void frmFA::cmdSelectAll_Click() {
  constexpr std::array<std::string_view, 7> kLines{
      "It is a good idea to choose only the associations you prefer",
      "vs. saving all associations. A full save of all associations",
      "can be time consuming if there are many. In addition, selecting",
      "all almost certainly saves off associations that are no longer",
      "valid on your system.",
      "",
      "Do you still want to select all?"};
  std::string question;
  for (const std::string_view line : kLines) question += fmt::format("{}{}", line, kCrLf);
  if (showsRegistered() && session_.prompts().messageBox(question, kButtonsYesNo | kIconQuestion,
                                                         foundation::kAppTitle) != Answer::Yes) {
    return;
  }
  lstFA.setAllChecked(true);
}

void frmFA::cmdClearAll_Click() {
  ticked_.clear();
  fillList();
}

void frmFA::cmdRemoveTemplate_Click() {
  const std::string name = cboTemplates.Text;
  if (session_.prompts().messageBox(fmt::format("Remove the template {}?", name),
                                    kButtonsYesNo | kIconQuestion,
                                    foundation::kAppTitle) != Answer::Yes) {
    return;
  }
  const Status status = backup::removeTemplate(session_, name);
  if (status != ERROR_SUCCESS) {
    tell(fmt::format("The template {} could not be removed: {}.", name, describeStatus(status)),
         kIconExclamation);
    return;
  }
  cboTemplates.Text = "";
  P_InitializeListWithTemplates();
}

std::string frmFA::selection() const {
  std::string result;
  for (const FileType& type : types_) {
    if (ticked_.contains(foldName(type.extension))) result += type.extension + '\0';
  }
  return result;
}

bool frmFA::saveTemplate() {
  const std::string name = cboTemplates.Text;
  if (name.empty()) return true;
  const std::string wrong = backup::whyNoTemplateName(name);
  if (!wrong.empty()) {
    tell(wrong, kIconInformation);
    return false;
  }
  const bool replaces = namedTemplate() >= 0 && cboTemplates.ListIndex < 0;
  if (replaces && session_.prompts().messageBox(
                      fmt::format("There is a template {}. Replace it?", name),
                      kButtonsYesNo | kIconQuestion, foundation::kAppTitle) != Answer::Yes) {
    return false;
  }
  std::vector<std::string> extensions;
  for (const FileType& type : types_) {
    if (ticked_.contains(foldName(type.extension))) extensions.push_back(type.extension);
  }
  const Status status = backup::writeTemplate(session_, name, extensions);
  if (status != ERROR_SUCCESS) {
    tell(fmt::format("The template {} could not be written: {}.{}Nothing was saved.", name,
                     describeStatus(status), kCrLf),
         kIconExclamation);
    return false;
  }
  P_InitializeListWithTemplates();
  return true;
}

AssociationOutcome frmFA::p_ExportFileAssociations(std::string_view sSelection) {
  std::vector<std::string> extensions;
  while (!sSelection.empty()) {
    const std::string extension = backup::RegistryBacker::StripNulls(sSelection);
    sSelection.remove_prefix(std::min(sSelection.size(), extension.size() + 1));
    extensions.push_back(extension);
  }
  forms::LongWork work(*this);
  return backup::exportAssociations(session_, backer_, extensions,
                                    backup::associationFolder(session_), work.progress());
}

void frmFA::cmdApply_Click() {
  if (!saveTemplate()) return;
  tellOutcome(p_ExportFileAssociations(selection()));
}

void frmFA::tellOutcome(const AssociationOutcome& outcome) {
  if (outcome.status != ERROR_SUCCESS) {
    tell(outcome.message, outcome.cancelled ? kIconInformation : kIconExclamation);
    return;
  }
  StatusText = fmt::format("{} saved in {}", counted(outcome.saved.size(), "type"),
                           backup::associationFolder(session_));
  if (outcome.failed.empty()) return;
  std::string text = "The following items could not be saved.";
  for (const AssociationOutcome::Failed& failed : outcome.failed) {
    text += fmt::format("{}{}: {}", kCrLf, failed.extension, failed.reason);
  }
  tell(text, kIconExclamation);
}

void frmFA::cmdRestore_Click() {
  std::vector<std::string> extensions;
  for (const FileType& type : types_) {
    if (ticked_.contains(foldName(type.extension))) extensions.push_back(type.extension);
  }
  {
    forms::LongWork work(*this);
    desk_.offer =
        backup::offerAssociations(session_, backer_, shownFolder(), extensions, work.progress());
    if (work.isCancelled()) desk_.offer.reset();
  }
  if (!desk_.offer) return;
  desk_.restored = false;
  formBook_.showModal("frmRestore");
  if (desk_.restored) p_InitializeFileAssoc();
}

void frmFA::tell(const std::string& text, int icon) {
  session_.prompts().messageBox(text, kButtonsOk | icon, foundation::kAppTitle);
}

}  // namespace korvex::dialogs
