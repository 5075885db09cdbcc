// QtHost: shows forms on the screen until they agree to go.
#pragma once

#include <functional>
#include <vector>

#include "forms/form_book.h"

namespace korvex::qt {

class FormView;

class QtHost : public forms::FormHost {
 public:
  // A form shown from a handler of another one is a dialog over that.
  void showModal(forms::Form& form) override;

  // Called once a form's window is on the screen.
  std::function<void(FormView&)> onShown;

 private:
  std::vector<FormView*> views_;
};

}  // namespace korvex::qt
