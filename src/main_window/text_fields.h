// TextFields: the main window's fields that stand for a value: the menu show delay and Explorer's
// descriptions of file types. They leave no marker: Apply runs the routines of those that differ
// from what start-up read.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/apply.h"
#include "engine/reg_worker.h"
#include "engine/tweak_controls.h"
#include "forms/controls.h"
#include "foundation/session.h"

namespace korvex::main_window {

class TextFields {
 public:
  // Takes the text boxes among the controls. edited is called after each edit that counts.
  TextFields(foundation::Session& session, engine::RegWorker& regWorker,
             const std::vector<engine::TweakControl>& controls, std::function<void()> edited);

  // What the fields show now is what the machine has.
  void load();
  int changesWaiting() const;

  // Both run the routines of the fields that were edited since load, also those that an earlier
  // Apply has written already.
  std::vector<engine::FailedRoutine> writeMenuSpeed();
  std::vector<engine::FailedRoutine> P_WriteExplorerDesc();

 private:
  struct Field {
    const engine::Tweak* tweak;
    forms::TextBox* box;
    bool digitsOnly = false;
    std::string atStart;  // what start-up read
    std::string applied;  // what is written by now
    std::string valid;    // the last text that the field may hold
    bool changed = false;
  };

  void Change(Field& field);
  std::vector<engine::FailedRoutine> write(bool digitsOnly);

  foundation::Session& session_;
  engine::RegWorker& regWorker_;
  std::vector<Field> fields_;
  std::function<void()> edited_;
};

}  // namespace korvex::main_window
