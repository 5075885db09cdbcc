// The window of one form.
#include "qt/form_view.h"

#include <QApplication>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QVBoxLayout>
#include <QWhatsThis>
#include <algorithm>

#include "qt/busy_filter.h"
#include "qt/layout_builder.h"
#include "qt/page_area.h"
#include "qt/text.h"
#include "qt/whats_this.h"

namespace korvex::qt {
namespace {

using forms::CommandButton;

constexpr int kNormal = 0;
constexpr int kMinimized = 1;
constexpr int kMaximized = 2;
constexpr QSize kLargestAtStart{1024, 720};
constexpr int kShowWorkEveryMs = 40;

Qt::WindowFlags flagsFor(bool dialog) {
  constexpr Qt::WindowFlags kFrame = Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                     Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
  if (dialog) return Qt::Dialog | kFrame | Qt::WindowContextHelpButtonHint;
  return Qt::Window | kFrame | Qt::WindowMinMaxButtonsHint;
}

// Below 1 a coordinate means: centred.
int placed(int wanted, int size, int centre) { return wanted < 1 ? centre - size / 2 : wanted; }

// The window moved as far as it takes to be in sight.
QPoint within(const QRect& room, QPoint place, QSize size) {
  const QPoint last = room.topLeft() + QPoint(std::max(0, room.width() - size.width()),
                                              std::max(0, room.height() - size.height()));
  return {std::clamp(place.x(), room.left(), last.x()),
          std::clamp(place.y(), room.top(), last.y())};
}

}  // namespace

FormView::FormView(forms::Form& form, QWidget* parent)
    : QDialog(parent, flagsFor(parent != nullptr)), form_(form) {
  setObjectName(toQt(form.name()));
  if (parent != nullptr) setWindowModality(Qt::ApplicationModal);
  bindings_.follow(form.Caption, [this] { setWindowTitle(toQt(form_.Caption.get())); });

  LayoutBuilder builder(*this, bindings_);
  auto* content = new QWidget(this);
  content->setLayout(builder.build(form.layout, content));
  widgets_ = builder.widgets();

  auto* window = new QVBoxLayout(this);
  window->setContentsMargins(0, 0, 0, 0);
  window->setSpacing(0);
  window->addWidget(content, 1);
  makeStatusBar();
  window->addWidget(statusBar_);

  prepareButtons();
  chainTabOrder(builder.tabOrder());
  connect(qApp, &QApplication::focusChanged, this,
          [this](QWidget*, QWidget* focused) { scrollToFocus(focused); });
  for (const forms::Control* control : unplacedControls()) {
    qWarning("%s.%s is not in the layout: it is not shown", form.name().c_str(),
             control->name().c_str());
  }
}

FormView::~FormView() {
  if (waitCursor_) QApplication::restoreOverrideCursor();
}

void FormView::makeStatusBar() {
  statusBar_ = new QStatusBar(this);
  statusText_ = new QLabel(statusBar_);
  statusText_->setTextFormat(Qt::PlainText);
  statusText_->setObjectName("statusText");
  statusText_->setIndent(fontMetrics().averageCharWidth());
  progress_ = new QProgressBar(statusBar_);
  progress_->setObjectName("progress");
  progress_->setAccessibleName("Progress");
  progress_->setMaximumWidth(fontMetrics().horizontalAdvance('x') * 30);
  cancel_ = new QPushButton("Cancel", statusBar_);
  cancel_->setObjectName("cancelWork");
  cancel_->setToolTip("Ends this and takes back what was done (Esc)");
  // Taking the focus would be told to the form, which is at work.
  cancel_->setFocusPolicy(Qt::NoFocus);
  connect(cancel_, &QPushButton::clicked, this, [this] { form_.CancelAsked = true; });
  statusBar_->addWidget(statusText_, 1);
  statusBar_->addPermanentWidget(progress_);
  statusBar_->addPermanentWidget(cancel_);
  bindings_.follow(form_.StatusText, [this] { showStatus(); });
  bindings_.follow(form_.Busy, [this] { showBusy(); });
  for (forms::Event* event :
       {&form_.Progress.changed, &form_.CanCancel.changed, &form_.CancelAsked.changed}) {
    bindings_.on(*event, [this] { showBusy(); });
  }
  bindings_.on(form_.wentOn, [this] {
    // Work has more steps than anybody could see.
    if (!shownSince_.isValid() || shownSince_.elapsed() >= kShowWorkEveryMs) showBusy();
  });
}

void FormView::showStatus() {
  statusText_->setText(toQt(form_.StatusText.get()));
  statusBar_->setVisible(busyForLong_ || !form_.StatusText->empty());
}

void FormView::showCursor() {
  const bool busy = form_.Busy;
  const QCursor cursor(form_.CanCancel ? Qt::BusyCursor : Qt::WaitCursor);
  if (busy && !waitCursor_) {
    busySince_.start();
    shownSince_.invalidate();
    QApplication::setOverrideCursor(cursor);
  } else if (busy) {
    QApplication::changeOverrideCursor(cursor);
  } else if (waitCursor_) {
    QApplication::restoreOverrideCursor();
  }
  waitCursor_ = busy;
}

void FormView::showBusy() {
  showCursor();
  const int percent = form_.Progress;
  progress_->setRange(0, percent < 0 ? 0 : 100);
  progress_->setValue(percent < 0 ? 0 : percent);
  busyForLong_ = form_.Busy && busySince_.elapsed() >= progressDelay;
  progress_->setVisible(busyForLong_);
  cancel_->setVisible(busyForLong_ && form_.CanCancel);
  cancel_->setEnabled(!form_.CancelAsked);
  showStatus();
  if (busyForLong_ && isVisible() && !showingWork_) showWork();
}

// The form works inside one of its handlers: what it tells meanwhile must reach the screen, and no
// other handler may run.
void FormView::showWork() {
  showingWork_ = true;
  if (form_.CanCancel) {
    const BusyFilter onlyCancel(*this, *cancel_, [this] { form_.CancelAsked = true; });
    QApplication::processEvents();
  } else {
    QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  }
  showingWork_ = false;
  shownSince_.start();
}

CommandButton* FormView::buttonWith(CommandButton::Role role) const {
  for (forms::Control* control : form_.controls()) {
    auto* button = dynamic_cast<CommandButton*>(control);
    if (button == nullptr || button->role() != role || !button->Visible) continue;
    if (widgetOf(*button) != nullptr) return button;
  }
  return nullptr;
}

void FormView::prepareButtons() {
  const CommandButton* byDefault = buttonWith(CommandButton::Role::Default);
  for (const auto& [control, widget] : widgets_) {
    auto* button = qobject_cast<QPushButton*>(widget);
    if (button == nullptr) continue;
    // The focused button takes the default's frame over, as in Windows; without a default Qt would
    // make one up, so keyPressEvent does it then.
    button->setAutoDefault(byDefault != nullptr);
    if (control == byDefault) button->setDefault(true);
  }
}

void FormView::chainTabOrder(const std::vector<QWidget*>& order) {
  for (std::size_t i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
}

QWidget* FormView::widgetOf(const forms::Control& control) const {
  const auto found = widgets_.find(&control);
  return found == widgets_.end() ? nullptr : found->second;
}

std::vector<const forms::Control*> FormView::unplacedControls() const {
  std::vector<const forms::Control*> unplaced;
  for (const forms::Control* control : form_.controls()) {
    if (widgetOf(*control) == nullptr) unplaced.push_back(control);
  }
  return unplaced;
}

QSize FormView::initialSize(const QRect& available) const {
  return sizeHint()
      .expandedTo(minimumSizeHint())
      .boundedTo(kLargestAtStart)
      .boundedTo(available.size());
}

void FormView::showInPlace() {
  const forms::WindowPlace place = form_.place.value_or(forms::WindowPlace{});
  const QWidget* parent = parentWidget();
  QScreen* screen = QGuiApplication::screenAt({place.left, place.top});
  if (!form_.place || screen == nullptr) {
    screen = parent != nullptr ? parent->screen() : QGuiApplication::primaryScreen();
  }
  const QRect available = screen->availableGeometry();
  const QSize size = initialSize(available);
  const QPoint centre =
      !form_.place && parent != nullptr ? parent->frameGeometry().center() : available.center();
  resize(size);
  move(within(
      available,
      {placed(place.left, size.width(), centre.x()), placed(place.top, size.height(), centre.y())},
      size));
  if (place.state == kMinimized) {
    showMinimized();
  } else if (place.state == kMaximized) {
    showMaximized();
  } else {
    show();
  }
  keepOnScreen();
  shown_ = true;
  rememberPlace();
}

void FormView::keepOnScreen() {
  // Only now is it known how wide the frame around the window is.
  if (isMinimized() || isMaximized()) return;
  const QPoint kept = within(screen()->availableGeometry(), pos(), frameGeometry().size());
  if (kept != pos()) move(kept);
}

void FormView::rememberPlace() {
  if (!shown_) return;
  forms::WindowPlace now = form_.place.value_or(forms::WindowPlace{kNormal, x(), y()});
  now.state = isMinimized() ? kMinimized : isMaximized() ? kMaximized : kNormal;
  // Where it stands when it is neither: that is the place to come back to.
  if (now.state == kNormal) {
    now.left = x();
    now.top = y();
  }
  form_.place = now;
}

void FormView::moveEvent(QMoveEvent* event) {
  QDialog::moveEvent(event);
  rememberPlace();
}

void FormView::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  rememberPlace();
}

void FormView::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange) rememberPlace();
}

void FormView::closeEvent(QCloseEvent* event) {
  event->ignore();
  form_.close();
}

void FormView::reject() {
  if (CommandButton* cancel = buttonWith(CommandButton::Role::Cancel)) cancel->press();
}

void FormView::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  const auto plain = event->modifiers() & ~Qt::KeypadModifier;
  if (enter && plain == Qt::NoModifier) {
    if (auto* focused = qobject_cast<QPushButton*>(focusWidget())) return focused->click();
    if (CommandButton* button = buttonWith(CommandButton::Role::Default)) button->press();
    return;
  }
  if (event->key() == Qt::Key_F1 && plain == Qt::ShiftModifier) {
    // What has the focus has no help of its own: let the user point at something.
    QWhatsThis::enterWhatsThisMode();
    return;
  }
  QDialog::keyPressEvent(event);
}

void FormView::contextMenuEvent(QContextMenuEvent* event) {
  QWidget* target = childAt(event->pos());
  QPoint place = event->globalPos();
  if (event->reason() == QContextMenuEvent::Keyboard && focusWidget() != nullptr) {
    target = focusWidget();
    place = target->mapToGlobal(target->rect().center());
  }
  event->setAccepted(target != nullptr && showWhatsThisMenu(*target, place));
}

void FormView::scrollToFocus(QWidget* focused) {
  // A widget is its own ancestor; the window itself has the focus where no control can have it.
  if (focused == nullptr || focused == this || !isAncestorOf(focused)) return;
  for (QWidget* outer = focused->parentWidget(); outer != this; outer = outer->parentWidget()) {
    if (auto* page = dynamic_cast<PageArea*>(outer)) page->ensureWidgetVisible(focused);
  }
}

}  // namespace korvex::qt
