// frmRightClick: the wizard that adds entries to the right click menus of file types, and removes
// those that it added. Each page writes when it is left; Cancel takes nothing of that back.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dialogs/direct_dialog.h"
#include "dialogs/shell/right_click_entries.h"

namespace korvex::dialogs {

class frmRightClick : public DirectDialog {
 public:
  static constexpr const char* kName = "frmRightClick";

  explicit frmRightClick(const DialogParts& parts);

  forms::Frame fraIntroduction{*this, "fraIntroduction", "Introduction"};
  forms::Label lblIntroduction{*this, "lblIntroduction", ""};
  forms::Label lblGuide{*this, "lblGuide", ""};
  forms::OptionButton optAdd{*this, "optAdd", "&Add entries to right click menus", "choice"};
  forms::OptionButton optRemove{*this, "optRemove", "&Remove entries that were added before",
                                "choice"};
  forms::TextBox txtPresent{
      *this,
      "txtPresent",
      {.widthInCharacters = 50, .multiLine = true, .readOnly = true, .rows = 6, .wraps = false}};
  forms::Label lblPresent{*this, "lblPresent", "&Present entries:", &txtPresent};

  forms::Frame fraFileTypes{*this, "fraFileTypes", "File types"};
  forms::Label lblFileTypes{*this, "lblFileTypes", ""};
  forms::MultiList lstFileTypes{*this, "lstFileTypes", 16};

  forms::Frame fraEntry{*this, "fraEntry", ""};
  forms::Label lblEnterText{*this, "lblEnterText", ""};
  forms::TextBox txtText{*this, "txtText", {.maxLength = 128, .widthInCharacters = 50}};
  forms::Label lblText{*this, "lblText", "Menu &text:", &txtText};
  forms::Label lblEnterPath{*this, "lblEnterPath", ""};
  forms::TextBox txtPath{*this, "txtPath", {.widthInCharacters = 50}};
  forms::Label lblPath{*this, "lblPath", "&Program:", &txtPath};
  forms::CommandButton cmdBrowse{*this, "cmdBrowse", "Br&owse..."};
  forms::Label lblClass{*this, "lblClass", ""};
  forms::Label lblCommit{*this, "lblCommit", ""};

  forms::Frame fraAdded{*this, "fraAdded", "Finished"};
  forms::Label lblAdded{*this, "lblAdded", ""};
  forms::Label lblReRun{*this, "lblReRun", ""};

  forms::Frame fraRemoval{*this, "fraRemoval", "Removal"};
  forms::Label lblRemoval{*this, "lblRemoval", ""};
  forms::MultiList lstEntries{*this, "lstEntries", 12};
  forms::TextBox txtEntry{*this, "txtEntry", {.widthInCharacters = 60, .readOnly = true}};
  forms::Label lblEntry{*this, "lblEntry", "&Selected:", &txtEntry};
  forms::CommandButton cmdTakeBack{*this, "cmdTakeBack", "&Take back..."};

  forms::Frame fraRemoved{*this, "fraRemoved", "Finished"};
  forms::Label lblRemoved{*this, "lblRemoved", ""};
  forms::Label lblRemovedText{*this, "lblRemovedText", ""};

  forms::CommandButton cmdBack{*this, "cmdBack", "&Back"};
  forms::CommandButton cmdWizardNext{*this, "cmdWizardNext", "&Next",
                                     forms::CommandButton::Role::Default};
  forms::CommandButton cmdCancel{*this, "cmdCancel", "&Cancel", forms::CommandButton::Role::Cancel};

  int page() const { return page_; }

 protected:
  // At its first page, whatever it showed before.
  void readMachine() override;

 private:
  // A file type on its way through the pages.
  struct Step {
    std::string type;
    std::string text;
    std::string path;
    std::optional<RightClickEntry> committed;  // in this run
  };
  struct PageParts {
    int page;
    forms::Frame* frame;
    std::vector<forms::Control*> controls;
  };

  void describe();
  void arrange();
  void p_PageCount(int page);
  void showButtons();
  void showPresent();
  void showEntryPage();
  void showRemovalPage();
  void cmdWizardNext_Click();
  void cmdBack_Click();
  void cmdBrowse_Click();
  void cmdTakeBack_Click();
  void chooseTypes();
  void nextType();
  void keepTyped();
  bool p_DoTheActualWorkAdd();
  bool agreesToReplace(const RightClickEntries::Plan& plan) const;
  platform::Status commit(const Step& step, const RightClickEntry& entry);
  void refuse(const RightClickEntries::Refusal& refusal);
  bool p_FillEntries();
  void tellUnread(platform::Status status);
  void DoTheActualWorkRemove();
  std::string remove(const std::vector<RightClickEntry>& chosen);
  void showSelected();
  std::string classText(const std::string& type) const;

  RightClickEntries entries_;
  std::vector<PageParts> pages_;
  int page_ = 0;
  std::vector<Step> steps_;
  std::size_t at_ = 0;  // of steps_
  std::size_t added_ = 0;
  std::vector<RightClickEntry> shown_;  // on the removal page
};

}  // namespace korvex::dialogs
