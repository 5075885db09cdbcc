// The Qt application.
#include "qt/application.h"

#include <QMessageBox>
#include <exception>

#include "qt/icon.h"

namespace korvex::qt {

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
  setApplicationName("korvex");
  setDesktopFileName("korvex");
  setWindowIcon(programIcon());
  // The host ends the program once its main window agreed to go.
  setQuitOnLastWindowClosed(false);
}

bool Application::notify(QObject* receiver, QEvent* event) {
  try {
    return QApplication::notify(receiver, event);
  } catch (const std::exception& error) {
    QMessageBox::critical(activeWindow(), "Korvex",
                          QString("Something went wrong: %1").arg(error.what()));
  }
  return false;
}

}  // namespace korvex::qt
