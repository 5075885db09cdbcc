// frmExProfDirs: folders of the user's profile that a roaming profile of NT leaves out. It writes
// at once.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "dialogs/direct_dialog.h"
#include "engine/raw_value.h"

namespace korvex::dialogs {

class frmExProfDirs : public DirectDialog {
 public:
  static constexpr const char* kName = "frmExProfDirs";

  explicit frmExProfDirs(const DialogParts& parts);

  forms::Label lblInfo{*this, "lblInfo", "Exclude user profile directories."};
  forms::ListBox lstExcluded{*this, "lstExcluded", 7};
  forms::Label lblExcluded{*this, "lblExcluded", "&Left out by now:", &lstExcluded};
  forms::CommandButton cmdClear{*this, "cmdClear", "&Clear"};
  forms::Label lblHow{
      *this, "lblHow",
      "The directory names should be entered relative to the root of the profile, and must be "
      "separated by semicolons."};
  forms::Label lblForExample{*this, "lblForExample", "For example:"};
  forms::Label lblExample{*this, "lblExample",
                          "Temporary Internet Files;Application Data\\Microsoft\\Outlook;Personal"};
  forms::TextBox txtExclude{*this, "txtExclude", {.widthInCharacters = 60}};
  forms::Label lblExclude{*this, "lblExclude", "&Directories:", &txtExclude};
  forms::CommandButton cmdExclude{*this, "cmdExclude", "&Exclude"};
  forms::CommandButton cmdDone{*this, "cmdDone", "D&one", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;
  int changesWaiting() const override { return txtExclude.Text->empty() ? 0 : 1; }

 private:
  void cmdExclude_Click();
  void cmdClear_Click();
  platform::Status readNames(std::vector<std::string>& names, engine::RawValue& value) const;
  bool isFolderOfProfile(const std::string& name) const;
  bool write(const std::vector<std::string>& names, const engine::RawValue& present);
  void tellUnread(platform::Status status);

  std::vector<std::string> shown_;
};

}  // namespace korvex::dialogs
