// LoadProgress: says how far a form is that takes long to load. Before its window is there, nothing
// else could.
#pragma once

#include <QElapsedTimer>
#include <QProgressDialog>
#include <memory>

#include "forms/form.h"

namespace korvex::qt {

// What is done sooner shows nothing: it would only flicker.
constexpr int kShowProgressAfterMs = 1000;

class LoadProgress {
 public:
  LoadProgress(forms::Form& form, QWidget* parent);
  bool isShown() const { return dialog_ != nullptr; }

 private:
  void follow();

  forms::Form& form_;
  QWidget* parent_;
  QElapsedTimer since_;
  forms::Subscription progress_;
  std::unique_ptr<QProgressDialog> dialog_;
};

}  // namespace korvex::qt
