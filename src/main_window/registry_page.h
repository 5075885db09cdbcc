// RegistryPage: named sets of configuration on the page "Registry": saving, restoring, erasing.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "backup/config_sets.h"
#include "backup/restore_offer.h"
#include "forms/controls.h"
#include "forms/form.h"
#include "forms/form_book.h"
#include "foundation/session.h"
#include "main_window/page_section.h"

namespace korvex::main_window {

// What the page shares with the rest of the program; all of it outlives the page.
struct BackupParts {
  backup::RegistryBacker& backer;
  backup::RestoreDesk& desk;
};

class RegistryPage : public PageSection {
 public:
  struct Hooks {
    std::function<int()> changesWaiting;  // that a restore would run over
    std::function<void()> restored;       // the machine has changed
  };

  RegistryPage(forms::Form& form, foundation::Session& session, forms::FormBook& formBook,
               const BackupParts& parts, Hooks hooks);

  std::vector<forms::Layout> groups(engine::Page page) override;
  void load() override;
  // Shows the set of a profile.kvx, which need not be one of this machine's.
  void open(const std::string& profile);

 private:
  void p_ValidateRegistrySaveControls();
  void p_SetSaveOnOff();
  void keepSaveOnOff(const std::vector<std::string>& tags);
  void fillSaves();
  void fillFileTypes();
  void p_cboSavesClickEvent();
  void showSet(const backup::ConfigSet& set);
  void cmdSave_Click();
  void cmdRestore_Click();
  void cmdErase_Click();
  bool mayReplace(const backup::SaveRequest& request);
  bool diskIsFine(const backup::SaveRequest& request);
  bool readRequest(backup::SaveRequest& request);
  void tellOutcome(const backup::SaveRequest& request, const backup::SaveOutcome& outcome);
  bool findSet(backup::ConfigSet& set);
  forms::CheckBox& box(std::string_view tag);
  void tell(const std::string& text, int icon);
  bool asked(const std::string& question, int icon);

  forms::Form& form_;
  foundation::Session& session_;
  forms::FormBook& formBook_;
  backup::ConfigSets sets_;
  backup::RestoreDesk& desk_;
  Hooks hooks_;
  std::string opened_;  // a profile.kvx that is no set of this machine's
  std::vector<forms::CheckBox*> boxes_;

  forms::ComboBox& cboSaves_;
  forms::Label& lblSaves_;
  forms::Label& lblSaved_;
  forms::ComboBox& cboFileTypes_;
  forms::Label& lblFileTypes_;
  forms::CommandButton& cmdSelectCategories_;
  forms::CommandButton& cmdFileAssoc_;
  forms::CommandButton& cmdSave_;
  forms::CheckList& lstRegRestore_;
  forms::Label& lblRegRestore_;
  forms::CommandButton& cmdRestore_;
  forms::CommandButton& cmdErase_;
};

}  // namespace korvex::main_window
