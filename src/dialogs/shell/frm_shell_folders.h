// frmShellFolders: moves the special folders of the user, or puts them back to where this Windows
// has them by itself. Only the paths are written, at once; files stay where they are.
#pragma once

#include <string>
#include <vector>

#include "dialogs/direct_dialog.h"
#include "dialogs/shell/shell_folder_paths.h"

namespace korvex::dialogs {

class frmShellFolders : public DirectDialog {
 public:
  static constexpr const char* kName = "frmShellFolders";

  explicit frmShellFolders(const DialogParts& parts);

  forms::ComboBox cboShellFolders{*this, "cboShellFolders"};
  forms::Label lblShellFolders{*this, "lblShellFolders", "&Folder:", &cboShellFolders};
  forms::Label lblDescription{*this, "lblDescription", ""};
  forms::TextBox txtPath{*this, "txtPath", {.widthInCharacters = 60, .readOnly = true}};
  forms::Label lblPath{*this, "lblPath", "Current &path:", &txtPath};
  forms::TextBox txtDefault{*this, "txtDefault", {.widthInCharacters = 60, .readOnly = true}};
  forms::Label lblDefault{*this, "lblDefault", "Defaul&t path:", &txtDefault};
  forms::Label lblState{*this, "lblState", ""};
  forms::CommandButton cmdChange{*this, "cmdChange", "&Change..."};
  forms::CommandButton cmdDefault{*this, "cmdDefault", "D&efault"};
  forms::CommandButton cmdDefaults{*this, "cmdDefaults", "Set &all to default..."};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override { p_DetermineShellFolders(); }

 private:
  void describe();
  void arrange();
  void p_DetermineShellFolders();
  void cmdChange_Click();
  void cmdDefault_Click();
  void cmdDefaults_Click();
  void showSelected();
  std::string stateText(const ShellFolder& folder) const;
  const ShellFolder* selected() const;
  // Whether no running program is in the way; one that is, is told.
  bool mayChange(std::string_view name) const;
  // Writes that path unless somebody else has changed the folder's since it was shown.
  void move(const std::string& name, const std::string& path);
  bool write(const std::function<platform::Status()>& steps);

  ShellFolderPaths paths_;
  std::vector<ShellFolder> shown_;
};

}  // namespace korvex::dialogs
