// ValueFields: the fields and lists of a form that stand for a row's value. They leave no marker:
// Apply runs the routines of those that differ from what was read. A text that a field does not
// take (letters, a number out of range) is told and taken back; a number that can still become one,
// as the 6 of 64, when the field is left.
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

  using Which = std::function<bool(const Tweak&)>;  // an empty one: all

  // What the fields show now is what the machine has.
  void load(const Which& which = {});
  int changesWaiting(const Which& which = {}) const;

  enum class Order { OfRows, OfEdits };
  // Runs the routines of the fields that were edited since load, also those that an earlier Apply
  // has written already.
  std::vector<FailedRoutine> write(const Which& which, Order order = Order::OfRows);
  // Either those for numbers, or all others.
  std::vector<FailedRoutine> writeNumbers();
  std::vector<FailedRoutine> writeTexts();

 private:
  struct Field {
    const Tweak* tweak;
    forms::Control* control;
    std::string atStart = {};  // what start-up read
    std::string applied = {};  // what is written by now
    std::string valid = {};    // the last text that the field may hold
    std::size_t changed = 0;   // the number of its first edit; 0 for none

    std::string text() const;
    void show(const std::string& text) const;
  };

  void Change(Field& field);
  void LostFocus(Field& field);
  void takeBack(Field& field, const std::string& text, std::string_view message);
  void finishWritten(Field& field);

  foundation::Session& session_;
  RegWorker& regWorker_;
  std::vector<Field> fields_;
  std::size_t edits_ = 0;
  std::function<void()> edited_;
};

}  // namespace korvex::engine
