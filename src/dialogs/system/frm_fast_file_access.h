// frmFastFileAccess: makes a program start by its bare name, by an application path.
#pragma once

#include <optional>
#include <string>

#include "dialogs/direct_dialog.h"

namespace korvex::dialogs {

class frmFastFileAccess : public DirectDialog {
 public:
  static constexpr const char* kName = "frmFastFileAccess";

  explicit frmFastFileAccess(const DialogParts& parts);

  forms::Label lblInfo{*this, "lblInfo",
                       "This feature allows you to easily access applications from the 'Run' menu "
                       "and Command Prompt. (Drop ? on me to learn more.)"};
  forms::Label lblNote{*this, "lblNote", "Note:"};
  forms::Label lblNoteText{
      *this, "lblNoteText",
      "When accessing applications from the Command Prompt you should prepend START to the "
      "command, i.e. START WORDPAD."};
  forms::TextBox txtApp{*this, "txtApp", {.widthInCharacters = 50}};
  forms::Label lblApp{*this, "lblApp", "Appli&cation:", &txtApp};
  forms::CommandButton cmdSelectApp{*this, "cmdSelectApp", "&Select..."};
  forms::CommandButton cmdApply{*this, "cmdApply", "&Apply"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override { txtApp.Text = ""; }
  int changesWaiting() const override { return txtApp.Text->empty() ? 0 : 1; }

 private:
  void cmdSelectApp_Click();
  void cmdApply_Click();
  // The path in the field where it is that of a program; what is wrong with it is told.
  std::optional<std::string> program() const;
  // Whether the program may have the key: another one's entry is shown first.
  platform::Status agreeOnEntry(const std::string& key, const std::string& path,
                                bool& agreed) const;
  platform::Status add(const std::string& key, const std::string& path) const;
};

}  // namespace korvex::dialogs
