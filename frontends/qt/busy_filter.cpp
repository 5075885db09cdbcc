// Dropping what the person does.
#include "qt/busy_filter.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWindow>
#include <utility>

namespace korvex::qt {
namespace {

bool isMouse(QEvent::Type type) {
  return type == QEvent::MouseButtonPress || type == QEvent::MouseButtonRelease ||
         type == QEvent::MouseButtonDblClick || type == QEvent::MouseMove;
}

bool isInput(QEvent::Type type) {
  switch (type) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::Close:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::NativeGesture:
    case QEvent::EnterWhatsThisMode:
      return true;
    default:
      return isMouse(type);
  }
}

}  // namespace

BusyFilter::BusyFilter(const QWidget& window, const QAbstractButton& button,
                       std::function<void()> escape)
    : window_(window), button_(button), escape_(std::move(escape)) {
  qApp->installEventFilter(this);
}

BusyFilter::~BusyFilter() { qApp->removeEventFilter(this); }

bool BusyFilter::isForButton(const QObject* receiver, const QMouseEvent& event) const {
  if (receiver == &button_) return true;
  // The window hands on to its widgets, whoever lies under the pointer; a button that is held down
  // is told where the pointer goes.
  if (receiver != window_.windowHandle()) return false;
  return button_.isDown() ||
         button_.rect().contains(button_.mapFromGlobal(event.globalPosition().toPoint()));
}

bool BusyFilter::eventFilter(QObject* receiver, QEvent* event) {
  const QEvent::Type type = event->type();
  if (!isInput(type)) return false;
  if (isMouse(type) && button_.isVisible() &&
      isForButton(receiver, static_cast<const QMouseEvent&>(*event))) {
    return false;
  }
  if (type == QEvent::KeyPress && static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Escape) {
    escape_();
  }
  // A window that is told to close would go although nobody has seen the event.
  if (type == QEvent::Close) event->ignore();
  return true;
}

}  // namespace korvex::qt
