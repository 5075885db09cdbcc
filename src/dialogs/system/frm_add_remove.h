// frmAddRemove: the programs that Windows lists for uninstalling. Stale entries are deleted, their
// commands edited, and uninstallers started. It writes at once; what it deletes can be taken back.
#pragma once

#include <string>
#include <vector>

#include "dialogs/direct_dialog.h"
#include "dialogs/system/uninstall_entries.h"

namespace korvex::dialogs {

class frmAddRemove : public DirectDialog {
 public:
  static constexpr const char* kName = "frmAddRemove";

  explicit frmAddRemove(const DialogParts& parts);

  forms::ListBox lstPrograms{*this, "lstPrograms", 10};
  forms::Label lblPrograms{*this, "lblPrograms",
                           "&Programs that can be uninstalled:", &lstPrograms};
  forms::TextBox txtCommand{*this, "txtCommand", {.widthInCharacters = 60, .readOnly = true}};
  forms::Label lblCommand{*this, "lblCommand", "Uninstall &command:", &txtCommand};
  forms::TextBox txtKey{*this, "txtKey", {.widthInCharacters = 60, .readOnly = true}};
  forms::Label lblKey{*this, "lblKey", "&Key:", &txtKey};
  forms::Label lblState{*this, "lblState", ""};
  forms::CommandButton cmdDelete{*this, "cmdDelete", "D&elete..."};
  forms::CommandButton cmdEdit{*this, "cmdEdit", "Ed&it..."};
  forms::CommandButton cmdRunUninstall{*this, "cmdRunUninstall", "&Run uninstaller..."};
  forms::ComboBox cboDeleted{*this, "cboDeleted"};
  forms::Label lblDeleted{*this, "lblDeleted", "Deleted &before:", &cboDeleted};
  forms::CommandButton cmdTakeBack{*this, "cmdTakeBack", "&Take back"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;

 private:
  void describe();
  void arrange();
  void p_InitializeListBox();
  void cmdDelete_Click();
  void cmdEdit_Click();
  void cmdRunUninstall_Click();
  void cmdTakeBack_Click();
  // The selected entry as the machine has it still; null, and told or traced, where it has not.
  const UninstallEntry* chosen();
  void select(const std::string& subKey);
  void showSelected();
  void showWhatCanBeDone();

  UninstallEntries entries_;
  std::vector<UninstallEntry> shown_;
  std::vector<engine::TakenAway::Item> removed_;
};

}  // namespace korvex::dialogs
