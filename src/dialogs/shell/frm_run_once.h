// frmRunOnce: the programs that Windows starts by itself, one startup area at a time. Entries are
// switched off and on, deleted, taken back and added at once.
#pragma once

#include <string>
#include <vector>

#include "dialogs/direct_dialog.h"
#include "dialogs/shell/startup_apps.h"

namespace korvex::dialogs {

class frmRunOnce : public DirectDialog {
 public:
  static constexpr const char* kName = "frmRunOnce";

  explicit frmRunOnce(const DialogParts& parts);

  // Keeps the number of the area on show; "" while none is chosen.
  struct HeadingLabel : forms::Label {
    using Label::Label;
    std::string Tag;
  };

  forms::CommandButton cmdShowRegRun{*this, "cmdShowRegRun", "View R&un I"};
  forms::CommandButton cmdShowRegRunII{*this, "cmdShowRegRunII", "View Run &II"};
  forms::CommandButton cmdShowRegRunOnce{*this, "cmdShowRegRunOnce", "View Run&Once"};
  forms::CommandButton cmdShowLoad_WinIni{*this, "cmdShowLoad_WinIni", "View Loa&d ="};
  forms::CommandButton cmdShowRun_WinIni{*this, "cmdShowRun_WinIni", "&View Run ="};
  forms::CommandButton cmdShowStartupGroup{*this, "cmdShowStartupGroup", "View Startup &Group"};
  forms::MultiList lstViewAppsLaunched{*this, "lstViewAppsLaunched", 12};
  HeadingLabel lblViewAppsLaunched{*this, "lblViewAppsLaunched", "Startup Apps",
                                   &lstViewAppsLaunched};
  forms::CommandButton cmdMoveRight{*this, "cmdMoveRight", "Move &R"};
  forms::CommandButton cmdMoveLeft{*this, "cmdMoveLeft", "Move &L"};
  forms::MultiList lstRestoreApps{*this, "lstRestoreApps", 12};
  forms::Label lblAppsDisabled{*this, "lblAppsDisabled", "Disabled Startup Apps", &lstRestoreApps};
  forms::TextBox txtCommand{*this, "txtCommand", {.widthInCharacters = 70, .readOnly = true}};
  forms::Label lblCommand{*this, "lblCommand", "&Command:", &txtCommand};
  forms::TextBox txtOrigin{*this, "txtOrigin", {.widthInCharacters = 70, .readOnly = true}};
  forms::Label lblOrigin{*this, "lblOrigin", "&From:", &txtOrigin};
  forms::Label lblState{*this, "lblState", ""};
  forms::ComboBox cboDeleted{*this, "cboDeleted"};
  forms::Label lblDeleted{*this, "lblDeleted", "Dele&ted here:", &cboDeleted};
  forms::CommandButton cmdTakeBack{*this, "cmdTakeBack", "Take &back"};
  forms::CommandButton cmdShowRun_Add{*this, "cmdShowRun_Add", "Add &Apps"};
  forms::CommandButton cmdDelete{*this, "cmdDelete", "D&elete"};
  forms::CommandButton cmdDone{*this, "cmdDone", "Do&ne", forms::CommandButton::Role::Cancel};

 protected:
  void readMachine() override;

 private:
  // What a list shows: the entries, or a heading, by its line.
  struct Shown {
    StartupEntries entries;
    std::vector<int> entryOfLine;  // -1: a heading
  };

  void describe();
  void arrange();
  void view(StartupArea area);
  bool isAreaChosen() const { return !lblViewAppsLaunched.Tag.empty(); }
  StartupArea area() const;
  std::string headingOf(StartupArea area) const;
  void fill(forms::MultiList& list, Shown& shown, StartupEntries entries);
  void fillDeleted();
  StartupEntries selected(const forms::MultiList& list, const Shown& shown) const;
  void selectionChanged(forms::MultiList& list, forms::MultiList& other);
  void showWhatCanBeDone();
  void showEntry();

  void frmRunOnce_PopulateRightSide();
  void frmRunOnce_PopulateLeftSide();
  void cmdDelete_Click();
  void cmdShowRun_Add_Click();
  void cmdTakeBack_Click();

  platform::Status putBack(const StartupEntry& entry);
  // Brings to the disk what was done, tells what failed, and reads again. done is for the status
  // bar: "switched off".
  void finish(const StartupEntries& moved, const std::vector<std::string>& failures,
              std::string_view done);
  std::string failureOf(const StartupEntry& entry, platform::Status status,
                        std::string_view routine);
  static void selectAgain(forms::MultiList& list, const Shown& shown, const StartupEntries& moved);

  StartupApps apps_;
  Shown launched_;
  Shown switchedOff_;
  std::vector<engine::TakenAway::Item> deleted_;
  bool settingSelection_ = false;
};

}  // namespace korvex::dialogs
