// frmRestore: what a restore would change, item by item; the person ticks what is to be restored.
//
// It shows the desk's offer and lets it go when it unloads. Nothing is written before cmdRestore.
#pragma once

#include <string>

#include "backup/restore_offer.h"
#include "forms/form.h"
#include "foundation/session.h"

namespace korvex::dialogs {

class frmRestore : public forms::Form {
 public:
  static constexpr const char* kName = "frmRestore";

  frmRestore(foundation::Session& session, backup::RestoreDesk& desk);

  void Load() override;
  bool QueryUnload() override { return !Busy; }
  void Unload() override { desk_.offer.reset(); }
  bool reloadsToShow() const override { return true; }

  forms::Label lblQuestion{*this, "lblQuestion", ""};
  forms::CheckList lstItems{*this, "lstItems", 14};
  forms::Label lblItems{*this, "lblItems", "&Items:", &lstItems};
  forms::CommandButton cmdSelectAll{*this, "cmdSelectAll", "Select &All"};
  forms::CommandButton cmdClearAll{*this, "cmdClearAll", "C&lear All"};
  forms::TextBox txtChanges{
      *this, "txtChanges", {.widthInCharacters = 60, .multiLine = true, .readOnly = true}};
  forms::Label lblChanges{*this, "lblChanges", "C&hanges:", &txtChanges};
  forms::Label lblSavedFirst{*this, "lblSavedFirst", ""};
  forms::CommandButton cmdRestore{*this, "cmdRestore", "&Restore"};
  forms::CommandButton cmdCancel{*this, "cmdCancel", "&Cancel", forms::CommandButton::Role::Cancel};

 private:
  void fill();
  void showChanges();
  void showWhatIsTicked();
  void cmdRestore_Click();
  void tellOutcome(const backup::RestoreOutcome& outcome);
  void trap(const char* routine, void (frmRestore::*handler)());

  foundation::Session& session_;
  backup::RestoreDesk& desk_;
  bool filling_ = false;
};

}  // namespace korvex::dialogs
