// Application: the Qt application of a Korvex with a window.
#pragma once

#include <QApplication>

namespace korvex::qt {

class Application : public QApplication {
 public:
  // Keeps references to both, as QApplication does.
  Application(int& argc, char** argv);

  // A broken invariant in a handler is shown, and the window lives on.
  bool notify(QObject* receiver, QEvent* event) override;
};

}  // namespace korvex::qt
