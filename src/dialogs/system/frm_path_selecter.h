// frmPathSelecter: the folder picker. It shows the machine's drives and folders.
//
// Whoever asks lays the prompt on the desk and finds the folder there, or nothing for a cancel. A
// name that is no folder yet can be typed: it is made once the person agrees.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "forms/form.h"
#include "foundation/session.h"

namespace korvex::dialogs {

struct FolderDesk {
  std::string prompt;
  std::optional<std::string> folder;
};

class frmPathSelecter : public forms::Form {
 public:
  static constexpr const char* kName = "frmPathSelecter";

  frmPathSelecter(foundation::Session& session, FolderDesk& desk);

  void Load() override;
  bool reloadsToShow() const override { return true; }

  forms::Label lblInfo{*this, "lblInfo", ""};
  forms::ComboBox drvDrive{*this, "drvDrive"};
  forms::Label lblDrive{*this, "lblDrive", "&Drive:", &drvDrive};
  forms::ListBox DirFolder{*this, "DirFolder", 14};
  forms::Label lblFolder{*this, "lblFolder", "&Folders:", &DirFolder};
  forms::TextBox txtCreateDirName{*this, "txtCreateDirName", {.widthInCharacters = 50}};
  forms::Label lblCreateDirName{*this, "lblCreateDirName", "Folder &name:", &txtCreateDirName};
  forms::CommandButton cmdOpen{*this, "cmdOpen", "&Open"};
  forms::CommandButton cmdOK{*this, "cmdOK", "OK", forms::CommandButton::Role::Default};
  forms::CommandButton cmdCancel{*this, "cmdCancel", "&Cancel", forms::CommandButton::Role::Cancel};

 private:
  void listDrives();
  // Shows the folders on the way to this one, and those in it. False where it cannot be read.
  bool openFolder(const std::string& path);
  void drvDrive_Click();
  void DirFolder_Click();
  void openSelected();
  void cmdOK_Click();
  // What stands in the field, as a full path.
  std::string typedFolder() const;
  void trap(const char* routine, void (frmPathSelecter::*handler)());

  foundation::Session& session_;
  FolderDesk& desk_;
  std::string open_;                // the folder that is shown open
  std::vector<std::string> paths_;  // of the list's items
  bool filling_ = false;
};

}  // namespace korvex::dialogs
