// DirectDialog: a dialog that writes at once when its button is pressed. It has no bank and leaves
// no pending change; what was typed and not written is gone when it closes, after a question.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "dialogs/dialog_parts.h"
#include "engine/at_once.h"
#include "engine/tweak.h"
#include "forms/form.h"

namespace korvex::dialogs {

class DirectDialog : public forms::Form {
 public:
  void Load() override;
  bool QueryUnload() override;
  // Loaded afresh to be shown: the machine may be another by then.
  bool reloadsToShow() const override { return changesWaiting() == 0; }

 protected:
  // On other Windows than these every control but labels and the closing button is disabled, with
  // the reason.
  DirectDialog(std::string name, std::string caption, const DialogParts& parts,
               engine::Families families = engine::kEvery);

  // Sets the controls from the machine; g_bNoRecord is set meanwhile. Reads only. Called by Load,
  // and by the dialog after it has written.
  virtual void readMachine() = 0;
  // What is typed and not written, as a number of changes.
  virtual int changesWaiting() const { return 0; }

  // readMachine in its trap, with recording suspended.
  void readAgain();
  // For readMachine: a failure is shown and disables everything, so that what could not be read is
  // not written over.
  void noteRead(platform::Status status);
  void noteProblem(std::string problem) { problem_ = std::move(problem); }
  // Disables everything a person could change, with the reason as tool tip.
  void disableAll(const std::string& reason);
  // Runs handler in an error trap under "frmX.routine".
  void trap(const std::string& routine, const std::function<void()>& handler);
  // Wires a button to a handler in its trap.
  void onPress(forms::CommandButton& button, const std::function<void()>& handler);

  const DialogParts& parts() const { return parts_; }
  foundation::Session& session() const { return parts_.session; }
  platform::Registry& registry() const { return parts_.session.registry(); }
  void tell(std::string_view text, int icon = platform::kIconInformation) const {
    engine::tell(session(), text, icon);
  }
  bool askYesNo(std::string_view question, int icon = platform::kIconQuestion) const {
    return engine::askYesNo(session(), question, icon);
  }

 private:
  DialogParts parts_;
  engine::Families families_;
  std::string problem_;  // of the last reading
};

}  // namespace korvex::dialogs
