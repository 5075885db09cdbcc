// frmWinTweaksII: what does not fit on the main window's Win Tweaks page: rows of the catalogue,
// and the icon cache, the search engine and the search domains, which are written at once.
#pragma once

#include <string>
#include <vector>

#include "dialogs/system/icon_cache.h"
#include "dialogs/system/search_domains.h"
#include "dialogs/tweak_dialog.h"

namespace korvex::dialogs {

class frmWinTweaksII : public TweakDialog {
 public:
  static constexpr const char* kName = "frmWinTweaksII";

  explicit frmWinTweaksII(const DialogParts& parts);

  void Load() override;

  // The product's names: here cmdApply is the button of the search domains.
  forms::CommandButton& cmdMainApply = TweakDialog::cmdApply;
  forms::CommandButton cmdlblIconCache{*this, "cmdlblIconCache", "Increase Icon cache si&ze"};
  forms::CommandButton cmdRebuildIconCache{*this, "cmdRebuildIconCache", "Rebuild icon cache"};
  forms::ComboBox cboIEDefaultSearch{*this, "cboIEDefaultSearch"};
  forms::Label lblIEDefaultSearch{*this, "lblIEDefaultSearch", "Change IE's de&fault search engine",
                                  &cboIEDefaultSearch};
  forms::Frame fraExplorerSearchDomain{*this, "fraExplorerSearchDomain",
                                       "Edit Explorer search domains"};
  forms::ComboBox cboExplorerSearch{*this, "cboExplorerSearch"};
  forms::Label lblExplorerSearch{*this, "lblExplorerSearch",
                                 "Search d&omains:", &cboExplorerSearch};
  forms::CommandButton cmdRemoveExplorerDomain{*this, "cmdRemoveExplorerDomain", "&Remove"};
  forms::TextBox txtAddExplorerDomain{*this, "txtAddExplorerDomain"};
  forms::Label lblAddExplorerDomain{*this, "lblAddExplorerDomain",
                                    "New do&main:", &txtAddExplorerDomain};
  forms::CommandButton cmdApply{*this, "cmdApply", "Appl&y"};

 protected:
  bool accepts(const engine::Tweak& tweak, const forms::CheckBox& box) override;
  void readMore() override;

 private:
  void describeControls();
  void arrange();
  void connectButtons();
  void p_ValidateControls();

  bool acceptsOpenWith();
  bool acceptsDosBox();

  void cmdlblIconCache_Click();
  void cmdRebuildIconCache_Click();
  // True where it was made; what failed is told.
  bool finishIconCache(const std::string& what, const IconCacheChange& change);

  void p_DetermineIEDefaultSearch();
  void showEngine(const std::string& name);
  void cboIEDefaultSearch_Click();

  // Shows the list with that domain, or the one at that place, selected.
  void p_InitializeSearchDomains(const std::string& selected, int otherwise);
  void cmdApply_Click();
  void cmdRemoveExplorerDomain_Click();
  bool readDomains();
  bool writeDomains();

  SearchDomains domains_;
  std::string engine_;  // as the machine has it
  bool filling_ = false;
};

}  // namespace korvex::dialogs
