// JetPanel: the group Access/Jet of frmOffice: whose settings are meant, which engine or format,
// and its fields. The fields are rows; this is what stands around them. The rows of an engine are
// those of the engine that was chosen last, also while a format is shown.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "backup/registry_backer.h"
#include "dialogs/dialog_parts.h"
#include "dialogs/office/extension_list.h"
#include "dialogs/office/jet_backups.h"
#include "engine/tweak.h"
#include "forms/controls.h"
#include "forms/layout.h"

namespace korvex::dialogs {

class JetPanel {
 public:
  // What the window does with its rows.
  struct Rows {
    using Which = std::function<bool(const engine::Tweak&)>;
    std::function<bool(const Which&)> wait;  // whether changes of them wait
    std::function<void(const Which&)> read;  // reads them again; what waits is dropped
  };

  // Makes the controls, which the form owns.
  JetPanel(forms::Form& form, const DialogParts& parts, backup::RegistryBacker& registryBacker,
           Rows rows);

  // takeGroup gives the rows' groups by their titles.
  forms::Layout layout(const std::function<forms::Layout(std::string_view)>& takeGroup);

  // Before the rows are read: what was chosen last is chosen again.
  void begin();
  // After them. Reads only.
  void p_DetermineAccessDefaultValues();
  // The window goes: what the person chose is remembered.
  void end();

  // The group was opened by the person: the keys are saved, once for all.
  void cmdAccess_Click();
  // False where a key could not be saved and the person does not want to go on without.
  bool backUpOnce();
  // Puts both keys back as they were saved; a key without a file stays, and so do both while
  // JetModify keeps them. False for a failure, which is told; then neither is changed.
  bool restoreBackups();

  // The key, below HKEY_LOCAL_MACHINE, of the engine or format that is shown; "" for none.
  std::string P_ReturnRegPathToRW() const;

  // Of Jet's fields, the six texts that are written before the others.
  static bool isWrittenFirst(const engine::Tweak& row);

 private:
  struct Format;
  static const std::array<Format, 4>& formats();
  // The title of the rows' group that belongs to an entry of the list.
  static std::string_view groupOf(std::string_view entry);

  void p_DetermineJetVersions();
  void p_ReSetControlsTo2x();
  void lstJetEngines_Click();
  void chkGlobal_Click();
  // What the controls around the rows show of the choice.
  void showChoice();
  // Shows the rows' state where nothing of it can be changed.
  void showKept(const Rows::Which& which);
  void readRows(const Rows::Which& which);
  void traceReaders(std::string_view group);
  bool mayDiscard(const Rows::Which& which, std::string_view name);
  void remember();

  forms::Form& form_;
  DialogParts parts_;
  foundation::Session& session_;
  Rows rows_;
  JetBackups backups_;
  forms::ListBox& lstJetEngines_;
  forms::Label& lblJetEngines_;
  forms::CheckBox& chkGlobal_;
  forms::TextBox& txtEngineKey_;
  forms::Label& lblEngineKey_;
  ExtensionList extensions_;
  forms::Frame& fraEIS_;
  forms::Frame& fraISAM_;
  std::array<forms::Frame*, 4> frames_{};  // of the formats
  struct Inside {
    forms::Frame* frame;
    std::vector<forms::Control*> controls;
  };
  std::vector<Inside> insides_;  // of the engine's frame and those of the formats
  std::string entry_;            // of the list, as it is shown
  bool filling_ = false;
  bool touched_ = false;  // the person was here
};

}  // namespace korvex::dialogs
