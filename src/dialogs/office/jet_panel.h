// JetPanel: the group Access/Jet of frmOffice: whose settings are meant, which engine or format,
// and its fields. The fields are rows; this is what stands around them.
#pragma once

#include <functional>
#include <string_view>

#include "backup/registry_backer.h"
#include "dialogs/dialog_parts.h"
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
  // The window goes: what is chosen is remembered.
  void end();

  // The group was opened by the person: the keys are saved, once for all.
  void cmdAccess_Click();
  // False where a key could not be saved and the person does not want to go on without.
  bool backUpOnce();
  // Puts both keys back as they were saved; a key without a file stays. False for a failure, which
  // is told; then neither is changed.
  bool restoreBackups();

  // Of Jet's fields, the six texts that are written before the others.
  static bool isWrittenFirst(const engine::Tweak& row);

 private:
  DialogParts parts_;
  backup::RegistryBacker& registryBacker_;
  Rows rows_;
};

}  // namespace korvex::dialogs
