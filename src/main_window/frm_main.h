// frmMain: the main window. Loading it starts the program, closing it ends the program.
//
// Its pages come from the catalogue's rows. A click on a box is recorded at once (PendingChanges)
// and carried out by cmdApply; what was not applied is discarded when the window closes.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/apply.h"
#include "engine/pending_changes.h"
#include "engine/reg_worker.h"
#include "engine/value_fields.h"
#include "forms/form.h"
#include "forms/form_book.h"
#include "foundation/session.h"
#include "main_window/main_pages.h"
#include "main_window/page_section.h"
#include "main_window/registry_page.h"
#include "main_window/start_up.h"
#include "protection/program_password.h"

namespace korvex::main_window {

class frmMain : public forms::Form {
 public:
  static constexpr const char* kName = "frmMain";
  static constexpr const char* kCaption = "Korvex...for Power Users - ";

  frmMain(foundation::Session& session, engine::RegWorker& regWorker,
          engine::PendingChanges& pending, forms::FormBook& formBook, const BackupParts& backup,
          protection::ProgramPassword& password, StartOptions options);

  void Load() override;
  bool QueryUnload() override;

  // Anything but Started after Load: the program is to end, and closing writes nothing.
  StartResult startResult() const { return startResult_; }

  // Shows the set of a profile.kvx, by its Windows path, on the page "Registry".
  void openSet(const std::string& profile);

  forms::TabStrip tabMain{*this, "tabMain", MainPages::tabs()};
  forms::CommandButton cmdAbout{*this, "cmdAbout", "A&bout"};
  forms::CommandButton cmdDefaults{*this, "cmdDefaults", "D&efaults"};
  forms::CommandButton cmdApply{*this, "cmdApply", "&Apply"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done"};

 private:
  void makeSections(forms::FormBook& formBook, const BackupParts& backup,
                    protection::ProgramPassword& password);
  // The same after something else has changed the machine.
  void readAgain();
  void connect();
  void cmdApply_Click();
  void cmdDone_Click();
  void cmdDefaults_Click();
  // Reads the machine into every control, as start-up and Defaults do.
  void readMachine();
  void p_SetTabControl();
  void rememberTab();
  void saveState();
  // The question whether to lose what was not applied; true where that is fine.
  bool mayDiscard();
  int changesWaiting() const;
  void edited();
  void showStatus();
  // Runs a handler in the error trap under the name of the control and its event.
  void trap(const std::string& routine, const std::function<void()>& handler);

  foundation::Session& session_;
  engine::RegWorker& regWorker_;
  engine::PendingChanges& pending_;
  StartOptions options_;
  StartUp startUp_;
  MainPages pages_;
  engine::ValueFields fields_;
  std::vector<std::unique_ptr<PageSection>> sections_;
  RegistryPage* registryPage_ = nullptr;  // one of them
  StartResult startResult_ = StartResult::NotYet;
  bool discardAgreed_ = false;
  std::string machineText_;
};

}  // namespace korvex::main_window
