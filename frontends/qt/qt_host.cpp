// Showing forms.
#include "qt/qt_host.h"

#include <QEventLoop>

#include "qt/form_view.h"
#include "qt/load_progress.h"

namespace korvex::qt {
namespace {

struct Asking {
  explicit Asking(bool& flag) : flag_(flag) { flag_ = true; }
  ~Asking() { flag_ = false; }
  bool& flag_;
};

}  // namespace

QtHost::QtHost() = default;
QtHost::~QtHost() = default;

void QtHost::loading(forms::Form& form) {
  QWidget* parent = views_.empty() ? nullptr : views_.back();
  loading_.push_back(std::make_unique<LoadProgress>(form, parent));
}

void QtHost::loaded(forms::Form&) { loading_.pop_back(); }

void QtHost::showModal(forms::Form& form) {
  FormView view(form, views_.empty() ? nullptr : views_.back());
  QEventLoop loop;
  bool asking = false;
  bool gone = false;
  const forms::Subscription closing = form.closeRequested.subscribe([&] {
    // A question that QueryUnload asks may make the form ask to be closed once more.
    if (asking || gone) return;
    const Asking now(asking);
    gone = form.QueryUnload();
    if (gone) loop.quit();
  });

  views_.push_back(&view);
  view.showInPlace();
  if (onShown) onShown(view);
  // A form may have asked to go while it was being shown.
  if (!gone) loop.exec();
  view.hide();
  views_.pop_back();
}

}  // namespace korvex::qt
