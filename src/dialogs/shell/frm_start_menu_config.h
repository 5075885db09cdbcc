// frmStartMenuConfig: which folders of the Start menu Explorer keeps in an order of their own. One
// is forced back to alphabetical order at once; its order is kept and can be taken back.
#pragma once

#include <string>
#include <vector>

#include "dialogs/direct_dialog.h"
#include "engine/taken_away.h"

namespace korvex::dialogs {

class frmStartMenuConfig : public DirectDialog {
 public:
  static constexpr const char* kName = "frmStartMenuConfig";

  explicit frmStartMenuConfig(const DialogParts& parts);

  forms::ComboBox cboStartParent{*this, "cboStartParent"};
  forms::Label lblStartParent{*this, "lblStartParent", "Present &folder:", &cboStartParent};
  forms::ListBox lstStartSub{*this, "lstStartSub", 10};
  forms::Label lblStartSub{*this, "lblStartSub", "&Subfolders:", &lstStartSub};
  forms::Label lblState{*this, "lblState", ""};
  forms::CommandButton cmdForceAlpha{*this, "cmdForceAlpha", "Force &alphabetical..."};
  forms::CommandButton cmdAccel{*this, "cmdAccel", "&Keyboard accelerators"};
  forms::ComboBox cboKept{*this, "cboKept"};
  forms::Label lblKept{*this, "lblKept", "Orders forgotten &before:", &cboKept};
  forms::CommandButton cmdTakeBack{*this, "cmdTakeBack", "&Take back"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;

 private:
  void describe();
  void arrange();
  void cboStartParent_Click();
  void lstStartSub_Click();
  void cmdForceAlpha_Click();
  void cmdTakeBack_Click();
  void showFolder();
  void showKept();
  void showWhatCanBeDone();
  // Below the root, of the first levels: all of them, or fewer.
  std::string pathBelowRoot(std::size_t levels) const;
  std::string currentPath() const;
  bool isRoot() const;
  std::string menuKey() const { return currentPath() + "\\Menu"; }
  // The status of reading the order of the present folder: 2 for none.
  platform::Status orderStatus() const;
  std::string shownName() const;

  std::vector<std::string> walked_;  // names of keys below the root
  engine::TakenAway taken_;
  std::vector<engine::TakenAway::Item> kept_;
  bool showing_ = false;
};

}  // namespace korvex::dialogs
