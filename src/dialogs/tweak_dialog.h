// TweakDialog: a dialog made of the rows of its bank. A click is recorded at once, cmdApply carries
// the bank out, and what was not applied is gone when the dialog closes.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/apply.h"
#include "engine/pending_changes.h"
#include "engine/reg_worker.h"
#include "engine/tweak_controls.h"
#include "forms/form.h"
#include "foundation/session.h"

namespace korvex::dialogs {

// What every dialog is given. The objects outlive it.
struct DialogParts {
  foundation::Session& session;
  engine::RegWorker& regWorker;
  engine::PendingChanges& pending;
  // Whether closing asks before it discards changes; not where nobody is in front of it.
  bool askBeforeDiscarding = true;
};

class TweakDialog : public forms::Form {
 public:
  TweakDialog(std::string name, std::string caption, engine::Bank bank, const DialogParts& parts);

  void Load() override;
  bool QueryUnload() override;
  void Unload() override;
  // Loaded for a routine that asks for its boxes it stays hidden; when a person comes to see it,
  // the machine may be another. A change that waits in it stays.
  bool reloadsToShow() const override { return changesWaiting() == 0; }

  forms::CommandButton cmdApply{*this, "cmdApply", "&Apply"};
  forms::CommandButton cmdDone{*this, "cmdDone", "&Done", forms::CommandButton::Role::Cancel};

 protected:
  // Whether a click on the row's box is to be recorded; false takes the click back.
  virtual bool accepts(const engine::Tweak&, const forms::CheckBox&) { return true; }

  // The group of that title gets a name; where the machine has none of its tweaks, all of the frame
  // is disabled, with their reason. For constructors.
  void enclose(forms::Frame& frame);

  foundation::Session& session() { return parts_.session; }

 private:
  void connect(const engine::TweakControl& entry);
  void cmdApply_Click();
  void disableFrames();
  int changesWaiting() const;
  void showStatus();
  void trap(const std::string& routine, const std::function<void()>& handler);

  DialogParts parts_;
  engine::Bank bank_;
  engine::TweakControls controls_;
  std::vector<forms::Frame*> frames_;
  forms::Subscription changed_;
  bool reverting_ = false;
};

}  // namespace korvex::dialogs
