// frmOffice: the options of Word, Excel, PowerPoint, the Office Assistant, Outlook's journal and
// the Jet database engine. Its boxes and fields are rows of the catalogue; folders, fonts and
// characters are written at once. One group is shown at a time.
#pragma once

#include <string>
#include <vector>

#include "backup/registry_backer.h"
#include "dialogs/office/actor_files.h"
#include "dialogs/office/jet_panel.h"
#include "dialogs/office/office_folders.h"
#include "dialogs/tweak_dialog.h"

namespace korvex::dialogs {

class frmOffice : public TweakDialog {
 public:
  static constexpr const char* kName = "frmOffice";

  frmOffice(const DialogParts& parts, backup::RegistryBacker& registryBacker);

  void Load() override;
  void Unload() override;

  // Before a change of Jet that does not go through Apply: its keys are saved, once for all. False
  // where that failed and the person does not want to go on without.
  bool backUpJetOnce() { return jet_.backUpOnce(); }

  forms::TabStrip tabOffice;
  forms::Label lblOffice{*this, "lblOffice", "Only MS Office 97 && 2000 supported"};
  forms::CommandButton cmdDefaults{*this, "cmdDefaults", "&Restore Defaults"};
  forms::TextBox txtExcelFont;
  forms::Label lblExcelFont{*this, "lblExcelFont", "Default font:", &txtExcelFont};
  forms::CommandButton cmdExcelDefaultFont{*this, "cmdExcelDefaultFont", "Change font..."};
  forms::CommandButton cmdExcelViewMRUList{*this, "cmdExcelViewMRUList", "Recent files..."};

 protected:
  bool mayApply() override;
  std::vector<engine::FailedRoutine> writeFields(engine::ValueFields& fields) override;
  std::string_view applyRoutine() const override { return "cmdApply_Click"; }
  void readMore() override;

 private:
  void arrange();
  // The group of that title with further parts below its rows.
  forms::Layout groupWith(const char* title, std::vector<forms::Layout> below);
  void connectButtons();
  // Shows that group, counted from 1; the first where there is none of that number.
  void p_SetOfficeFrames(int group);
  void tabOffice_Click();
  void showExcelFont();
  void cmdExcelDefaultFont_Click();
  void cmdExcelViewMRUList_Click();
  void cmdDefaults_Click();
  void traceCounters();
  void disableWithoutOffice();

  OfficeFolders folders_;
  ActorFiles actors_;
  JetPanel jet_;
};

}  // namespace korvex::dialogs
