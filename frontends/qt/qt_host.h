// QtHost: shows forms on the screen until they agree to go.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "forms/form_book.h"

namespace korvex::qt {

class FormView;
class LoadProgress;

class QtHost : public forms::FormHost {
 public:
  QtHost();
  ~QtHost() override;

  // A form shown from a handler of another one is a dialog over that.
  void showModal(forms::Form& form) override;
  void loading(forms::Form& form) override;
  void loaded(forms::Form& form) override;

  // Called once a form's window is on the screen.
  std::function<void(FormView&)> onShown;

 private:
  std::vector<FormView*> views_;
  // A form may load another one while it loads.
  std::vector<std::unique_ptr<LoadProgress>> loading_;
};

}  // namespace korvex::qt
