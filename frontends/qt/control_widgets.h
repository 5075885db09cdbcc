// Widgets for controls, bound both ways: a property that changes is shown without being taken for
// the user's hand, and the user's hand sets the property.
#pragma once

#include <QWidget>
#include <map>
#include <string>

#include "forms/controls.h"
#include "qt/bindings.h"

class QButtonGroup;
class QGroupBox;
class QTabWidget;

namespace korvex::qt {

// Makes the widgets of one window.
class ControlWidgets {
 public:
  // The window outlives the widgets; the bindings go before them.
  ControlWidgets(QWidget& window, Bindings& bindings) : window_(window), bindings_(bindings) {}

  // A widget for the control, as a child of the parent. A TabStrip made here is one without pages.
  QWidget* make(forms::Control& control, QWidget* parent);
  // The group box of a Frame; the caller puts its parts in.
  QGroupBox* makeFrame(forms::Frame& frame, QWidget* parent);
  // A TabStrip whose pages the caller adds, in order; bind it when they are there.
  QTabWidget* makePages(forms::TabStrip& strip, QWidget* parent);
  void bindPages(forms::TabStrip& strip, QTabWidget& widget);

 private:
  QWidget* makeCheckBox(forms::CheckBox& control, QWidget* parent);
  QWidget* makeOptionButton(forms::OptionButton& control, QWidget* parent);
  QWidget* makeCommandButton(forms::CommandButton& control, QWidget* parent);
  QWidget* makeLabel(forms::Label& control, QWidget* parent);
  QWidget* makeTabBar(forms::TabStrip& control, QWidget* parent);
  // What every kind has: name, state, tool tip, help, accessible name.
  void bindCommon(forms::Control& control, QWidget& widget);

  QWidget& window_;
  Bindings& bindings_;
  std::map<std::string, QButtonGroup*> optionGroups_;
};

}  // namespace korvex::qt
