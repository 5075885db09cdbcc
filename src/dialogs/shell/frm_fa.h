// frmFA: saves file associations type by type, names choices of them, and puts them back.
//
// The list shows the registered types, or those that were saved; marks stay while the list is
// filtered. Nothing is written before cmdApply or the restore window.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "backup/associations.h"
#include "backup/restore_offer.h"
#include "forms/form.h"
#include "forms/form_book.h"
#include "foundation/session.h"

namespace korvex::dialogs {

class frmFA : public forms::Form {
 public:
  static constexpr const char* kName = "frmFA";

  frmFA(foundation::Session& session, forms::FormBook& formBook, backup::RegistryBacker& backer,
        backup::RestoreDesk& desk);

  void Load() override;
  bool QueryUnload() override { return !Busy; }
  bool reloadsToShow() const override { return true; }

  forms::ComboBox cboShow{*this, "cboShow"};
  forms::Label lblShow{*this, "lblShow", "&Show:", &cboShow};
  forms::TextBox txtFilter{*this, "txtFilter", {.widthInCharacters = 40}};
  forms::Label lblFilter{*this, "lblFilter", "&Find:", &txtFilter};
  forms::CheckList lstFA{*this, "lstFA", 16};
  forms::Label lblFA{*this, "lblFA", "File t&ypes:", &lstFA};
  forms::CommandButton cmdSelectAll{*this, "cmdSelectAll", "Select A&ll"};
  forms::CommandButton cmdClearAll{*this, "cmdClearAll", "&Clear All"};
  forms::ComboBox cboTemplates{*this, "cboTemplates", forms::ComboBox::Style::DropDown};
  forms::Label lblTemplates{*this, "lblTemplates", "&Template:", &cboTemplates};
  forms::CommandButton cmdRemoveTemplate{*this, "cmdRemoveTemplate", "Re&move"};
  forms::CommandButton cmdApply{*this, "cmdApply", "&Apply"};
  forms::CommandButton cmdRestore{*this, "cmdRestore", "&Restore..."};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 private:
  void P_InitializeListWithTemplates();
  void p_InitializeFileAssoc();
  void fillList();
  void showWhatIsTicked();
  void cboTemplates_Click();
  // The template that cboTemplates names, in whatever case; -1 for none.
  int namedTemplate() const;
  void cmdSelectAll_Click();
  void cmdClearAll_Click();
  void cmdRemoveTemplate_Click();
  void cmdApply_Click();
  void cmdRestore_Click();
  // The ticked extensions, each followed by Chr(0).
  std::string selection() const;
  backup::AssociationOutcome p_ExportFileAssociations(std::string_view sSelection);
  bool saveTemplate();
  void tellOutcome(const backup::AssociationOutcome& outcome);
  bool showsRegistered() const { return cboShow.ListIndex <= 0; }
  // Of what the list shows, where that is what was saved.
  std::string shownFolder() const;
  void tell(const std::string& text, int icon);
  void on(forms::Event& event, std::string_view routine, void (frmFA::*handler)());

  foundation::Session& session_;
  forms::FormBook& formBook_;
  backup::RegistryBacker& backer_;
  backup::RestoreDesk& desk_;
  std::vector<backup::FileType> types_;  // all that could be shown
  std::vector<std::string> shown_;       // extensions, as in the list
  std::set<std::string> ticked_;         // folded extensions
  bool filling_ = false;
};

}  // namespace korvex::dialogs
