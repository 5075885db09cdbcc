// A window with a bar, once it is worth one.
#include "qt/load_progress.h"

#include <QApplication>
#include <algorithm>

#include "qt/text.h"

namespace korvex::qt {

LoadProgress::LoadProgress(forms::Form& form, QWidget* parent) : form_(form), parent_(parent) {
  since_.start();
  progress_ = form.Progress.changed.subscribe([this] { follow(); });
}

void LoadProgress::follow() {
  if (!dialog_) {
    if (since_.elapsed() < kShowProgressAfterMs) return;
    dialog_ = std::make_unique<QProgressDialog>(parent_);
    dialog_->setWindowTitle(toQt(form_.Caption.get()));
    dialog_->setLabelText("Reading the settings of the machine...");
    dialog_->setCancelButton(nullptr);
    dialog_->setMinimumDuration(0);
    dialog_->setRange(0, 100);
    dialog_->show();
  }
  dialog_->setValue(std::max(0, form_.Progress.get()));
  QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

}  // namespace korvex::qt
