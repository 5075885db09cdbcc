// Showing and changing the Assistant's character and folders.
#include "dialogs/office/actor_files.h"

#include <fmt/format.h>

#include "engine/at_once.h"
#include "engine/folder_choice.h"
#include "engine/office.h"
#include "foundation/error_handler.h"

namespace korvex::dialogs {

using engine::HKCU;
using forms::Layout;

namespace {

constexpr std::string_view kPath = "AsstPath";
constexpr std::string_view kSourcePath = "AsstSourcePath";
constexpr std::string_view kFile = "AsstFile";
constexpr std::int16_t kVersion2000 = 9;

std::string nameIn(const std::string& path) { return path.substr(path.find_last_of("\\/") + 1); }

}  // namespace

ActorFiles::ActorFiles(forms::Form& form, const DialogParts& parts)
    : parts_(parts),
      path_(make(form, "AsstPath", "Actor files:", "The folder of the Assistant's characters",
                 "Change actor folder...", "Choose another folder of actor files; written at once",
                 &ActorFiles::changeActorPath)),
      source_(make(form, "AsstSourcePath", "Looked for in:", "Where Office looks for actor files",
                   "Change source folder...",
                   "Choose where Office looks for actor files; written at once",
                   &ActorFiles::changeActorSourcePath)),
      actor_(make(form, "AsstFile", "Current actor:", "The file of the character that is shown",
                  "Change current actor...", "Choose another character; written at once",
                  &ActorFiles::p_ChangeCurrentActor)) {}

ActorFiles::Shown ActorFiles::make(forms::Form& form, const std::string& name, const char* caption,
                                   const char* toolTip, const char* button, const char* buttonTip,
                                   void (ActorFiles::*handler)()) {
  auto& field = form.own<forms::TextBox>(
      "txt" + name, forms::TextBoxOptions{.widthInCharacters = 40, .readOnly = true});
  auto& label = form.own<forms::Label>("lbl" + name, caption, &field);
  auto& change = form.own<forms::CommandButton>("cmd" + name, button);
  field.ToolTipText = toolTip;
  label.ToolTipText = toolTip;
  change.ToolTipText = buttonTip;
  change.Click += [this, &change, handler] {
    foundation::guarded(parts_.session, change.name() + "_Click",
                        [this, handler] { (this->*handler)(); });
  };
  return {&field, &label, &change};
}

Layout ActorFiles::layout() {
  std::vector<Layout> cells;
  for (const Shown* shown : {&actor_, &path_, &source_}) {
    cells.push_back(Layout::of(*shown->label));
    cells.push_back(Layout::of(*shown->field));
    cells.push_back(Layout::of(*shown->button));
  }
  return Layout::grid(3, std::move(cells));
}

std::string_view ActorFiles::key() const {
  return engine::officeKey(parts_.session, "Common\\Assistant");
}

void ActorFiles::read() {
  show(path_, kPath, "Actor path undeterminable");
  show(source_, kSourcePath, "Actor source path undeterminable");
  show(actor_, kFile, "Current Actor undeterminable");
}

void ActorFiles::show(const Shown& shown, std::string_view value, std::string_view undeterminable) {
  std::string text;
  const platform::Status status = engine::storedText(parts_.session, HKCU, key(), value, text);
  parts_.session.trace.dump("lRetVal&", status);
  shown.field->Text = text.empty() ? std::string(undeterminable) : text;
  shown.field->WhatsThis =
      fmt::format("The value {} of the key HKEY_CURRENT_USER\\{}.", value, key());
}

void ActorFiles::p_ChangeCurrentActor() {
  foundation::Session& session = parts_.session;
  session.trace.enter("[frmOffice.p_ChangeCurrentActor]");
  std::string folder;
  engine::storedText(session, HKCU, key(), kPath, folder);
  const bool is2000 = session.g_iOfficeVer >= kVersion2000;
  const auto file = session.prompts().pickFile(
      {.title = "Locate Actor files...",
       .filter = is2000 ? "Actor Files (*.acp;*.act;*.acs)|*.acp;*.act;*.acs"
                        : "Actor Files (*.acp;*.act)|*.acp;*.act",
       .fileName = {},
       .folder = session.machine().systemInfo().ExpandEnvironmentStringsA(folder)});
  if (file && !nameIn(*file).empty()) write(kFile, nameIn(*file));
}

void ActorFiles::changeActorPath() {
  changeFolder(kPath, "Locate the new folder in which the Actor files are located.");
}

void ActorFiles::changeActorSourcePath() {
  changeFolder(kSourcePath, "Locate the new folder in which Office should search for Actor files.");
}

void ActorFiles::changeFolder(std::string_view value, std::string_view title) {
  if (parts_.session.g_iOfficeVer >= kVersion2000) {
    engine::tell(parts_.session, "This function is valid in MS Office 95 and MS Office 97 only.");
    return;
  }
  const auto folder = engine::chooseFolder(parts_.session, title);
  if (folder) write(value, *folder);
}

void ActorFiles::write(std::string_view value, const std::string& text) {
  engine::changeOrTell(parts_.session, "Operation failed.", platform::kIconCritical,
                       [&] { return engine::putText(parts_.session, HKCU, key(), value, text); });
  read();
}

}  // namespace korvex::dialogs
