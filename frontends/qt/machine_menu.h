// The menu "Machine" of the main window: opens another machine in the place of this one.
#pragma once

#include <functional>
#include <string>

class QMenuBar;
class QWidget;

namespace korvex::qt {

class FormView;

// chosen is called with a folder that a machine can be read from; one that cannot is told at once,
// and nothing else happens. F10 opens the menu, Ctrl+O asks for a folder.
QMenuBar* makeMachineMenu(FormView& view, std::function<void(const std::string& folder)> chosen);

}  // namespace korvex::qt
