// LayoutBuilder: a form's layout in plain data becomes widgets in Qt layouts.
#pragma once

#include <QWidget>
#include <map>
#include <memory>
#include <vector>

#include "forms/form.h"
#include "qt/control_widgets.h"
#include "qt/flow_layout.h"

class QBoxLayout;
class QGridLayout;
class QGroupBox;
class QLayout;

namespace korvex::qt {

class LayoutBuilder {
 public:
  LayoutBuilder(QWidget& window, Bindings& bindings)
      : bindings_(bindings), widgets_(window, bindings) {}

  // The layout as a child of the window; a last row of nothing but buttons stays in sight while
  // the rest scrolls.
  QLayout* build(const forms::Layout& layout, QWidget* window);

  // The widgets by their controls, and in the order of the layout, which is the tab order.
  const std::map<const forms::Control*, QWidget*>& widgets() const { return made_; }
  const std::vector<QWidget*>& tabOrder() const { return tabOrder_; }

 private:
  using Part = forms::Layout;

  void addToBox(QBoxLayout& box, const Part& part, QWidget* parent);
  QLayout* makeLayout(const Part& part, QWidget* parent);
  QLayout* makeBox(const Part& part, QWidget* parent);
  QLayout* makeGrid(const Part& part, QWidget* parent);
  QLayout* makeFlow(const Part& part, QWidget* parent);
  // Null where the part is a layout or a space.
  QWidget* makeWidget(const Part& part, QWidget* parent);
  QWidget* makeGroup(const Part& part, QWidget* parent);
  QWidget* makePages(const Part& part, QWidget* parent);
  QWidget* makeControl(forms::Control& control, QWidget* parent);
  QWidget* makeScrollingPage(const Part& part, QWidget* parent, bool margins);
  void connectBuddies();

  Bindings& bindings_;
  ControlWidgets widgets_;
  std::shared_ptr<FlowLayout::Page> flows_ = std::make_shared<FlowLayout::Page>();
  std::map<const forms::Control*, QWidget*> made_;
  std::vector<QWidget*> tabOrder_;
};

}  // namespace korvex::qt
