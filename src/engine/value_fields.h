// ValueFields: the fields and lists of a form that stand for a row's value. They leave no marker:
// Apply runs the routines of those that differ from what was read.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/apply.h"
#include "engine/reg_worker.h"
#include "engine/tweak_controls.h"
#include "forms/controls.h"
#include "foundation/session.h"

namespace korvex::engine {

class ValueFields {
 public:
  // Takes the text and combo boxes among the controls. edited is called after each edit that
  // counts.
  ValueFields(foundation::Session& session, RegWorker& regWorker,
              const std::vector<TweakControl>& controls, std::function<void()> edited);

  // What the fields show now is what the machine has.
  void load();
  int changesWaiting() const;

  // Runs the routines of the fields that were edited since load, also those that an earlier Apply
  // has written already. Either of those for numbers, or of all others.
  std::vector<FailedRoutine> writeNumbers() { return write(true); }
  std::vector<FailedRoutine> writeTexts() { return write(false); }

 private:
  struct Field {
    const Tweak* tweak;
    forms::Control* control;
    std::string atStart = {};  // what start-up read
    std::string applied = {};  // what is written by now
    std::string valid = {};    // the last text that the field may hold
    bool changed = false;

    std::string text() const;
  };

  void Change(Field& field);
  void takeBack(Field& field);
  void showWord(Field& field);
  std::vector<FailedRoutine> write(bool numbers);

  foundation::Session& session_;
  RegWorker& regWorker_;
  std::vector<Field> fields_;
  std::function<void()> edited_;
};

}  // namespace korvex::engine
