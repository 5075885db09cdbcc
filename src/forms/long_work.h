// LongWork: a form at work, for as long as this lives: busy, with a progress, to be cancelled.
#pragma once

#include <functional>

#include "forms/form.h"

namespace korvex::forms {

class LongWork {
 public:
  explicit LongWork(Form& form) : form_(form) {
    form_.CanCancel = true;
    form_.Progress = 0;
    form_.Busy = true;
  }
  ~LongWork() {
    form_.Busy = false;
    form_.CanCancel = false;
    form_.Progress = -1;
  }
  LongWork(const LongWork&) = delete;
  LongWork& operator=(const LongWork&) = delete;

  // For the work to call between its steps, with percent 0 to 100; false asks for its end.
  std::function<bool(int)> progress() {
    return [this](int percent) { return form_.goOn(percent); };
  }
  bool isCancelled() const { return form_.CancelAsked; }

 private:
  Form& form_;
};

}  // namespace korvex::forms
