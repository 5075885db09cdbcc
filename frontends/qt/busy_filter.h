// BusyFilter: while it lives the person reaches one button and the Escape key, and nothing else.
//
// For events that are handled while a form works inside one of its handlers. What the person does
// to anything else meanwhile is dropped, not kept for later: it was meant for a window that looked
// otherwise then.
#pragma once

#include <QObject>
#include <functional>

class QAbstractButton;
class QMouseEvent;
class QWidget;

namespace korvex::qt {

class BusyFilter : public QObject {
 public:
  BusyFilter(const QWidget& window, const QAbstractButton& button, std::function<void()> escape);
  ~BusyFilter() override;

  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  bool isForButton(const QObject* receiver, const QMouseEvent& event) const;

  const QWidget& window_;
  const QAbstractButton& button_;
  std::function<void()> escape_;
};

}  // namespace korvex::qt
