// frmNTDebug: C:\boot.ini as text beside the switches that it may hold, and the order in which NT
// loads its drivers, which takes the window's place while it is shown.
#pragma once

#include <string>

#include "dialogs/direct_dialog.h"
#include "dialogs/nt/boot_file.h"

namespace korvex::dialogs {

class frmNTDebug : public DirectDialog {
 public:
  static constexpr const char* kName = "frmNTDebug";

  explicit frmNTDebug(const DialogParts& parts);
  void Unload() override;

  forms::TextBox txtBOOTININT{
      *this,
      "txtBOOTININT",
      {.widthInCharacters = 80, .multiLine = true, .rows = 9, .wraps = false}};
  forms::Label lblBootIni{*this, "lblBootIni", "&Boot.ini", &txtBOOTININT};
  forms::Frame fraBootIni{*this, "fraBootIni", "Boot.ini switches"};
  forms::CommandButton cmdShowDriverLoadOrder{*this, "cmdShowDriverLoadOrder",
                                              "Show driver &load order"};
  forms::CommandButton cmdApply{*this, "cmdApply", "&Apply"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

  forms::Label lblDriverLoadInfo{
      *this, "lblDriverLoadInfo",
      "This is the order in which drivers load during the NT boot process. If you would like to "
      "save this list to a text file click here:"};
  forms::CommandButton cmdDriverLoadOrderSave{*this, "cmdDriverLoadOrderSave", "Save to &file"};
  forms::TextBox txtDriverLoadOrder{
      *this,
      "txtDriverLoadOrder",
      {.widthInCharacters = 80, .multiLine = true, .readOnly = true, .rows = 16}};
  forms::CommandButton cmdShowLoadOrderDone{*this, "cmdShowLoadOrderDone", "&Done",
                                            forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;
  int changesWaiting() const override;

 private:
  void addSwitches();
  void setToolTips();
  void p_InitializeBootIniText();
  // Disables what cannot edit the file, or work on this Windows, with the reason.
  void setUsable(forms::Control& control, const std::string& reason, const std::string& toolTip);
  bool agreeOnText();
  void cmdApply_Click();
  void showLoadOrder(bool shown);
  void P_DetermineDriverLoadOrder();
  void cmdDriverLoadOrderSave_Click();
  void cmdDone_Click();
  std::string workFile() const { return session().g_sWinDir + "loadodr.dat"; }
  // A failure is told under the routine's name; true where there is none.
  bool succeeded(std::string_view what, platform::Status status);

  BootFile bootFile_;
  forms::Layout switches_;
  std::vector<forms::Control*> bootControls_;
  forms::CommandButton* cmdDrWatson_ = nullptr;
  bool readable_ = false;
  bool madeWorkFile_ = false;
};

}  // namespace korvex::dialogs
