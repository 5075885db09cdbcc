// What the page "Registry" does.
#include "main_window/registry_page.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "backup/associations.h"
#include "backup/categories.h"
#include "engine/same_name.h"
#include "forms/long_work.h"
#include "foundation/error_handler.h"
#include "foundation/reg_value.h"
#include "main_window/options.h"

namespace korvex::main_window {

using backup::Category;
using backup::ConfigSet;
using backup::SaveOutcome;
using backup::SaveRequest;
using engine::sameName;
using forms::CommandButton;
using forms::Layout;
using foundation::kCrLf;
using namespace platform;

namespace {

constexpr std::string_view kSaveOnOff = "SaveOnOff";
constexpr const char* kAllTypes = "All registered types";
constexpr const char* kTitle = "Saved settings";

struct BoxRow {
  std::string_view tag;
  const char* caption;  // with its mnemonic
  const char* captionNt;
  const char* toolTip;
};
constexpr std::array kBoxes{
    BoxRow{"ColorConfig", "&Color configuration", nullptr, "Colours and appearance schemes"},
    BoxRow{"CursorConfig", "C&ursor configuration", nullptr,
           "The cursor scheme, with its cursor files"},
    BoxRow{"DesktopConfig", "Deskto&p configuration", nullptr,
           "Desktop settings, screen savers and the wallpaper with its file"},
    BoxRow{"KeyboardConfig", "&Keyboard configuration", nullptr, "Repeat rate, delay, NumLock"},
    BoxRow{"ShareConfig", "&Local shares", nullptr,
           "Folders and printers that this machine shares"},
    BoxRow{"MappedConfig", "Network file &mappings", nullptr, "Mapped network drives"},
    BoxRow{"MRUConfig", "MRU l&ists", nullptr, "The lists of what was used last"},
    BoxRow{"PowerConfig", "P&ower configuration", nullptr, "Power schemes"},
    BoxRow{"DUNConfig", "Dial-Up Adapter confi&guration", "RAS connection confi&guration",
           "Connections, phone books, locations and password lists"},
    BoxRow{"FAConfig", "File associations", nullptr,
           "File types: which program opens what; slow where there are many"},
    BoxRow{"IEFavConfig", "IE Fa&vorites", nullptr, "The folder of favorites with all in it"},
    BoxRow{"MozillaConfig", "Navigator bookmarks", nullptr, "The bookmarks of the other browser"},
};

std::string joinTags(const std::vector<std::string>& tags) {
  return fmt::format("{}", fmt::join(tags, ","));
}

}  // namespace

RegistryPage::RegistryPage(forms::Form& form, foundation::Session& session,
                           forms::FormBook& formBook, const BackupParts& parts, Hooks hooks)
    : form_(form),
      session_(session),
      formBook_(formBook),
      sets_(session, parts.backer),
      desk_(parts.desk),
      hooks_(std::move(hooks)),
      cboSaves_(form.own<forms::ComboBox>("cboSaves", forms::ComboBox::Style::DropDown)),
      lblSaves_(form.own<forms::Label>("lblSaves", "&Name of the save:", &cboSaves_)),
      lblSaved_(form.own<forms::Label>("lblSaved", "")),
      cboFileTypes_(form.own<forms::ComboBox>("cboFileTypes")),
      lblFileTypes_(form.own<forms::Label>("lblFileTypes", "File t&ypes to save:", &cboFileTypes_)),
      cmdSelectCategories_(form.own<CommandButton>("cmdSelectCategories", "Tick all")),
      cmdFileAssoc_(form.own<CommandButton>("cmdFileAssoc", "File associations...")),
      cmdSave_(form.own<CommandButton>("cmdSave", "&Save")),
      lstRegRestore_(form.own<forms::CheckList>("lstRegRestore", 12)),
      lblRegRestore_(form.own<forms::Label>("lblRegRestore", "W&hat to restore:", &lstRegRestore_)),
      cmdRestore_(form.own<CommandButton>("cmdRestore", "Res&tore...")),
      cmdErase_(form.own<CommandButton>("cmdErase", "E&rase...")) {
  for (const BoxRow& row : kBoxes) {
    auto& check = form.own<forms::CheckBox>("chk" + std::string(row.tag), row.caption);
    check.ToolTipText = row.toolTip;
    boxes_.push_back(&check);
  }
  cboSaves_.ToolTipText = "Type a name for a new save, or choose one that is there";
  cboFileTypes_.ToolTipText = "Which file types are saved: all, or those of a template";
  cmdSelectCategories_.ToolTipText = "Tick everything that this machine has";
  cmdFileAssoc_.ToolTipText = "Saves single file types, and keeps templates of them";
  cmdSave_.ToolTipText = "Save what is ticked under this name";
  lstRegRestore_.ToolTipText = "What the save holds; what is ticked can be restored";
  cmdRestore_.ToolTipText = "Shows what would change, and restores it";
  cmdErase_.ToolTipText = "Deletes the save";
  const auto on = [this](forms::Event& event, std::string name, void (RegistryPage::*handler)()) {
    event += [this, name = std::move(name), handler] {
      foundation::guarded(session_, name, [this, handler] { (this->*handler)(); });
    };
  };
  on(cboSaves_.Change, "p_cboSavesClickEvent", &RegistryPage::p_cboSavesClickEvent);
  on(cmdSave_.Click, "cmdSave_Click", &RegistryPage::cmdSave_Click);
  on(cmdRestore_.Click, "cmdRestore_Click", &RegistryPage::cmdRestore_Click);
  on(cmdErase_.Click, "cmdErase_Click", &RegistryPage::cmdErase_Click);
  cmdFileAssoc_.Click += [this] {
    formBook_.showModal("frmFA");
    fillFileTypes();
  };
  cmdSelectCategories_.Click += [this] {
    for (forms::CheckBox* check : boxes_) {
      if (check->Enabled) check->Value = forms::vbChecked;
    }
  };
  lstRegRestore_.ItemCheck +=
      [this] { cmdRestore_.Enabled = !lstRegRestore_.checkedItems().empty(); };
}

std::vector<Layout> RegistryPage::groups(engine::Page page) {
  if (page != engine::Page::Registry) return {};
  std::vector<Layout> boxes;
  for (forms::CheckBox* check : boxes_) boxes.push_back(Layout::of(*check));
  return {
      Layout::group(kTitle, {Layout::of(lblSaves_), Layout::of(cboSaves_), Layout::of(lblSaved_)}),
      Layout::group(
          "What to save",
          {Layout::grid(2, std::move(boxes)), Layout::of(lblFileTypes_),
           Layout::row({Layout::of(cboFileTypes_), Layout::of(cmdFileAssoc_)}),
           Layout::row({Layout::of(cmdSelectCategories_), Layout::space(), Layout::of(cmdSave_)})}),
      Layout::group("Restore", {Layout::of(lblRegRestore_), Layout::of(lstRegRestore_),
                                Layout::row({Layout::of(cmdErase_), Layout::space(),
                                             Layout::of(cmdRestore_)})})};
}

void RegistryPage::load() {
  p_ValidateRegistrySaveControls();
  p_SetSaveOnOff();
  fillFileTypes();
  fillSaves();
}

forms::CheckBox& RegistryPage::box(std::string_view tag) {
  const auto row = std::ranges::find(kBoxes, tag, &BoxRow::tag);
  return *boxes_.at(static_cast<std::size_t>(row - kBoxes.begin()));
}

// What this machine has nothing of cannot be saved.
void RegistryPage::p_ValidateRegistrySaveControls() {
  session_.trace.enter("[p_ValidateRegistrySaveControls]");
  for (const BoxRow& row : kBoxes) {
    forms::CheckBox& check = box(row.tag);
    const std::string why = backup::whyNotSaved(session_, *backup::findCategory(row.tag));
    check.Caption = session_.g_bNT && row.captionNt != nullptr ? row.captionNt : row.caption;
    check.Enabled = why.empty();
    check.ToolTipText = why.empty() ? row.toolTip : why;
    if (!why.empty()) check.Value = forms::vbUnchecked;
  }
}

// The boxes stand as they did for the last save.
void RegistryPage::p_SetSaveOnOff() {
  session_.trace.enter("[p_SetSaveOnOff]");
  const std::string stored =
      ',' + session_.regTool.GetRegStr(kConfiguration, kSaveOnOff, HKEY_LOCAL_MACHINE) + ',';
  for (const BoxRow& row : kBoxes) {
    forms::CheckBox& check = box(row.tag);
    const bool ticked = stored.find(fmt::format(",{},", row.tag)) != std::string::npos;
    check.Value = ticked && check.Enabled ? forms::vbChecked : forms::vbUnchecked;
  }
}

void RegistryPage::keepSaveOnOff(const std::vector<std::string>& tags) {
  const std::string text = joinTags(tags);
  if (session_.regTool.GetRegStr(kConfiguration, kSaveOnOff, HKEY_LOCAL_MACHINE) == text) return;
  foundation::P_WriteRegValue(session_, HKEY_LOCAL_MACHINE, kConfiguration, kSaveOnOff, text,
                              KEY_ALL_ACCESS, true);
}

void RegistryPage::fillFileTypes() {
  const std::string chosen = cboFileTypes_.selectedItem();
  cboFileTypes_.Clear();
  cboFileTypes_.AddItem(kAllTypes);
  for (const std::string& name : backup::associationTemplates(session_)) {
    cboFileTypes_.AddItem(name);
  }
  const auto& items = cboFileTypes_.items();
  const auto same = std::ranges::find(items, chosen);
  cboFileTypes_.ListIndex = same == items.end() ? 0 : static_cast<int>(same - items.begin());
}

void RegistryPage::fillSaves() {
  const std::string text = cboSaves_.Text;
  cboSaves_.Clear();
  for (const std::string& name : backup::savedSets(session_)) cboSaves_.AddItem(name);
  if (!opened_.empty()) cboSaves_.AddItem(opened_);
  cboSaves_.Text = text;
  p_cboSavesClickEvent();
}

// The page shows the set of that name, or that there is none.
void RegistryPage::p_cboSavesClickEvent() {
  session_.trace.enter("[p_cboSavesClickEvent]");
  const std::string name = cboSaves_.Text;
  lstRegRestore_.Clear();
  cmdRestore_.Enabled = false;
  cmdErase_.Enabled = false;
  ConfigSet set;
  std::string message;
  const Status status = name.empty() ? ERROR_FILE_NOT_FOUND : sets_.find(name, set, message);
  if (status == ERROR_SUCCESS) {
    showSet(set);
  } else if (status == ERROR_FILE_NOT_FOUND && name.find('\\') == std::string::npos) {
    lblSaved_.Caption = name.empty() ? "Type a name for a new save, or choose one."
                                     : "There is no save of this name yet.";
  } else {
    lblSaved_.Caption = forms::captionOf(message);
    cmdErase_.Enabled = true;
  }
}

void RegistryPage::showSet(const ConfigSet& set) {
  const bool available = sets_.isAvailable(set);
  lblSaved_.Caption = forms::captionOf(
      available
          ? fmt::format("Saved {} on {} ({}, {}).", set.saved, set.windows, set.computer, set.user)
          : fmt::format("Saved {}; its folder {} is not available.", set.saved, set.folder));
  lblSaved_.ToolTipText = set.folder;
  for (const BoxRow& row : kBoxes) {
    forms::CheckBox& check = box(row.tag);
    check.Value = set.holds(row.tag) && check.Enabled ? forms::vbChecked : forms::vbUnchecked;
  }
  for (const std::string& tag : set.tags) {
    lstRegRestore_.AddItem(std::string(backup::findCategory(tag)->captionFor(session_)));
  }
  lstRegRestore_.setAllChecked(true);
  cmdErase_.Enabled = true;
}

void RegistryPage::open(const std::string& profile) {
  if (profile.empty()) return;
  ConfigSet set;
  std::string message;
  if (sets_.find(profile, set, message) != ERROR_SUCCESS) {
    tell(message, kIconExclamation);
    return;
  }
  ConfigSet known;
  const bool isOurs =
      sets_.find(set.name, known, message) == ERROR_SUCCESS && sameName(known.folder, set.folder);
  opened_ = isOurs ? "" : fmt::format("{}\\{}", set.folder, backup::kProfileFile);
  fillSaves();
  cboSaves_.Text = isOurs ? set.name : opened_;
}

bool RegistryPage::readRequest(SaveRequest& request) {
  request.name = cboSaves_.Text;
  const std::string wrong = backup::whyNoSetName(request.name);
  if (!wrong.empty()) {
    tell(wrong, kIconInformation);
    return false;
  }
  for (const BoxRow& row : kBoxes) {
    if (box(row.tag).Value == forms::vbChecked) request.tags.emplace_back(row.tag);
  }
  const std::string types = cboFileTypes_.selectedItem();
  if (box("FAConfig").Value != forms::vbChecked || cboFileTypes_.ListIndex <= 0) return true;
  const Status status = backup::readTemplate(session_, types, request.extensions);
  if (status == ERROR_SUCCESS && !request.extensions.empty()) return true;
  tell(fmt::format("The template {} names no file type: choose another one.", types),
       kIconInformation);
  return false;
}

// What stands in the folder goes; a save of that name in another folder stays there, but its record
// goes.
bool RegistryPage::mayReplace(const SaveRequest& request) {
  if (session_.g_bNoShowConfirmation) return true;
  const std::string folder = sets_.folderFor(request);
  ConfigSet set;
  std::string message;
  Status status = sets_.find(fmt::format("{}\\{}", folder, backup::kProfileFile), set, message);
  if (status != ERROR_SUCCESS) status = sets_.find(request.name, set, message);
  if (status != ERROR_SUCCESS) return true;
  const std::string where =
      sameName(set.folder, folder)
          ? ""
          : fmt::format(" It lies in {}, stays there, and is no longer listed.", set.folder);
  return asked(fmt::format("There is a save named {} already, of {}.{}{}Replace it?", request.name,
                           set.saved, where, kCrLf),
               kIconQuestion);
}

bool RegistryPage::diskIsFine(const SaveRequest& request) {
  switch (sets_.checkDisk(request)) {
    case backup::DiskState::NotReady:
      tell("The disk is not ready.", kIconExclamation);
      return false;
    case backup::DiskState::NotEnoughSpace:
      return asked(fmt::format("The disk where the save will occur may not have{0}enough space to "
                               "complete the operation.{0}Continue?",
                               kCrLf),
                   kIconExclamation);
    default:
      return true;
  }
}

void RegistryPage::cmdSave_Click() {
  SaveRequest request;
  if (!readRequest(request) || !diskIsFine(request) || !mayReplace(request)) return;
  SaveOutcome outcome;
  {
    forms::LongWork work(form_);
    outcome = sets_.save(request, work.progress());
  }
  if (outcome.status == ERROR_SUCCESS) keepSaveOnOff(request.tags);
  fillSaves();
  tellOutcome(request, outcome);
}

void RegistryPage::tellOutcome(const SaveRequest& request, const SaveOutcome& outcome) {
  if (outcome.status != ERROR_SUCCESS) {
    tell(outcome.message, outcome.cancelled ? kIconInformation : kIconExclamation);
    return;
  }
  form_.StatusText = fmt::format("{} saved: {} files in {}", request.name, outcome.files,
                                 sets_.folderFor(request));
  if (outcome.failed.empty()) return;
  std::string text = "The following items could not be saved.";
  for (const SaveOutcome::Failed& failed : outcome.failed) text += kCrLf.data() + failed.caption;
  text += kCrLf;
  for (const SaveOutcome::Failed& failed : outcome.failed) {
    text += fmt::format("{}{}: {}", kCrLf, failed.caption, failed.reason);
  }
  tell(text, kIconExclamation);
}

bool RegistryPage::findSet(ConfigSet& set) {
  std::string message;
  const Status status = sets_.find(cboSaves_.Text.get(), set, message);
  if (status == ERROR_SUCCESS && sets_.isAvailable(set)) return true;
  tell(status == ERROR_INVALID_DATA
           ? message
           : fmt::format("The current save cannot be located on disk.{}Locate the proper disk and "
                         "try again.",
                         kCrLf),
       kIconExclamation);
  return false;
}

void RegistryPage::cmdRestore_Click() {
  ConfigSet set;
  if (!findSet(set)) return;
  if (hooks_.changesWaiting() > 0) {
    tell(
        "There are changes that have not been applied. Apply them first, or leave Korvex without "
        "them: a restore would mix with them.",
        kIconInformation);
    return;
  }
  std::vector<std::string> chosen;
  for (int i = 0; i < lstRegRestore_.ListCount(); ++i) {
    if (lstRegRestore_.isChecked(i)) chosen.push_back(set.tags.at(static_cast<std::size_t>(i)));
  }
  set.tags = chosen;
  // What it overwrites is saved first, and takes the room of a save.
  SaveRequest keeper;
  keeper.name = set.name;
  keeper.folder = set.folder;
  keeper.tags = chosen;
  if (!diskIsFine(keeper)) return;
  {
    forms::LongWork work(form_);
    desk_.offer = sets_.offer(set, work.progress());
    if (work.isCancelled()) desk_.offer.reset();
  }
  if (!desk_.offer) return;
  desk_.restored = false;
  formBook_.showModal("frmRestore");
  if (!desk_.restored) return;
  hooks_.restored();
  fillSaves();
  form_.StatusText = fmt::format("{} restored", set.name);
}

void RegistryPage::cmdErase_Click() {
  const std::string name = cboSaves_.Text;
  ConfigSet set;
  std::string message;
  const Status found = sets_.find(name, set, message);
  if (!asked(fmt::format("Remove the saved settings for {}?",
                         found == ERROR_SUCCESS ? set.name : name),
             kIconQuestion)) {
    return;
  }
  std::uint32_t attributes = 0;
  const bool available = found == ERROR_SUCCESS && sets_.isAvailable(set);
  if (!available) {
    if (session_.files().attributes(set.folder, attributes) == ERROR_NOT_READY) {
      tell(fmt::format(
               "The drive is not ready.{0}Check the drive where the save is stored{0}and try "
               "again.",
               kCrLf),
           kIconExclamation);
      return;
    }
    if (session_.prompts().messageBox(
            fmt::format("The folder containing this save is not available.{}Only the information "
                        "stored in Korvex will be erased.",
                        kCrLf),
            kButtonsOkCancel | kIconExclamation, foundation::kAppTitle) != Answer::Ok) {
      return;
    }
  }
  if (set.name.empty()) set.name = name;
  const backup::EraseOutcome outcome = sets_.erase(set, !available);
  if (outcome.status != ERROR_SUCCESS) {
    tell(outcome.message, kIconExclamation);
    return;
  }
  if (name == opened_) opened_.clear();
  cboSaves_.Text = "";
  fillSaves();
  form_.StatusText = outcome.foreignFilesStay
                         ? fmt::format("{} erased; other files in {} stay", set.name, set.folder)
                         : fmt::format("{} erased", set.name);
}

bool RegistryPage::asked(const std::string& question, int icon) {
  return session_.prompts().messageBox(question, kButtonsYesNo | icon, foundation::kAppTitle) ==
         Answer::Yes;
}

void RegistryPage::tell(const std::string& text, int icon) {
  session_.prompts().messageBox(text, kButtonsOk | icon, foundation::kAppTitle);
}

}  // namespace korvex::main_window
