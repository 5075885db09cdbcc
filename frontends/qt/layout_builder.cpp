// From plain data to Qt layouts.
#include "qt/layout_builder.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <functional>
#include <stdexcept>
#include <utility>

#include "qt/page_area.h"
#include "qt/text.h"

namespace korvex::qt {
namespace {

using forms::Control;
using forms::ControlKind;
using Kind = forms::Layout::Kind;
using Part = forms::Layout;

constexpr int kWideField = 30;

bool any(const Part& part, const std::function<bool(const Part&)>& isIt) {
  return isIt(part) || std::any_of(part.parts.begin(), part.parts.end(),
                                   [&](const Part& inner) { return any(inner, isIt); });
}

bool isMultiLine(const Part& part) {
  const auto* text = dynamic_cast<const forms::TextBox*>(part.control);
  return text != nullptr && text->options().multiLine;
}

// Whether a part has a use for height that is left over; where none has, it stays free below them.
bool wantsHeight(const Part& part) {
  if (part.kind == Kind::Space || part.kind == Kind::Pages) return true;
  if (part.kind == Kind::Control && part.control != nullptr) {
    return part.control->kind() == ControlKind::ListBox || isMultiLine(part);
  }
  // The room that a row leaves is beside its parts, not below them.
  return std::any_of(part.parts.begin(), part.parts.end(), [&part](const Part& inner) {
    return !(part.kind == Kind::Row && inner.kind == Kind::Space) && wantsHeight(inner);
  });
}

bool wantsWidth(const Part& part) {
  return any(part, [](const Part& inner) {
    switch (inner.kind) {
      case Kind::Space:
      case Kind::Pages:
      case Kind::Group:
      case Kind::Flow:
        return true;
      case Kind::Control:
        break;
      default:
        return false;
    }
    if (inner.control == nullptr) return false;
    if (const auto* label = dynamic_cast<const forms::Label*>(inner.control)) {
      return label->buddy() == nullptr;
    }
    const auto* text = dynamic_cast<const forms::TextBox*>(inner.control);
    return inner.control->kind() == ControlKind::ListBox || isMultiLine(inner) ||
           (text != nullptr && text->options().widthInCharacters >= kWideField);
  });
}

bool isButton(const Part& part) {
  return part.kind == Kind::Control && part.control->kind() == ControlKind::CommandButton;
}

bool isButtonRow(const Part& part) {
  const auto buttonOrSpace = [](const Part& p) { return p.kind == Kind::Space || isButton(p); };
  return part.kind == Kind::Row && std::any_of(part.parts.begin(), part.parts.end(), isButton) &&
         std::all_of(part.parts.begin(), part.parts.end(), buttonOrSpace);
}

std::vector<Control*> controlsOf(const Part& part) {
  std::vector<Control*> found;
  if (part.control != nullptr) found.push_back(part.control);
  for (const Part& inner : part.parts) {
    for (Control* control : controlsOf(inner)) found.push_back(control);
  }
  return found;
}

bool hasPages(const Part& part) {
  return any(part, [](const Part& inner) { return inner.kind == Kind::Pages; });
}

}  // namespace

QLayout* LayoutBuilder::build(const Part& layout, QWidget* window) {
  QLayout* result = nullptr;
  if (hasPages(layout)) {
    result = makeLayout(Part::column({layout}), window);
  } else {
    auto* column = new QVBoxLayout;
    Part scrolling = layout;
    Part buttons;
    if (layout.kind == Kind::Column && !layout.parts.empty() && isButtonRow(layout.parts.back())) {
      buttons = layout.parts.back();
      scrolling.parts.pop_back();
    }
    column->addWidget(makeScrollingPage(scrolling, window, false));
    if (!buttons.parts.empty()) addToBox(*column, buttons, window);
    result = column;
  }
  connectBuddies();
  return result;
}

QWidget* LayoutBuilder::makeWidget(const Part& part, QWidget* parent) {
  switch (part.kind) {
    case Kind::Group:
      return makeGroup(part, parent);
    case Kind::Pages:
      return makePages(part, parent);
    case Kind::Control:
      return makeControl(*part.control, parent);
    default:
      return nullptr;
  }
}

QLayout* LayoutBuilder::makeLayout(const Part& part, QWidget* parent) {
  switch (part.kind) {
    case Kind::Grid:
      return makeGrid(part, parent);
    case Kind::Flow:
      return makeFlow(part, parent);
    default:
      return makeBox(part, parent);
  }
}

void LayoutBuilder::addToBox(QBoxLayout& box, const Part& part, QWidget* parent) {
  if (part.kind == Kind::Space) return box.addStretch();
  if (QWidget* widget = makeWidget(part, parent)) {
    box.addWidget(widget);
  } else {
    box.addLayout(makeLayout(part, parent));
  }
}

QLayout* LayoutBuilder::makeBox(const Part& part, QWidget* parent) {
  const bool isRow = part.kind == Kind::Row;
  QBoxLayout* box = isRow ? static_cast<QBoxLayout*>(new QHBoxLayout) : new QVBoxLayout;
  for (const Part& inner : part.parts) addToBox(*box, inner, parent);
  // Buttons below each other are equally wide; one among other things keeps its own width.
  const bool onlyButtons = std::all_of(part.parts.begin(), part.parts.end(), [](const Part& p) {
    return isButton(p) || p.kind == Kind::Space;
  });
  for (int i = 0; !isRow && !onlyButtons && i < static_cast<int>(part.parts.size()); ++i) {
    if (isButton(part.parts[static_cast<std::size_t>(i)])) {
      box->itemAt(i)->setAlignment(Qt::AlignLeft);
    }
  }
  const bool filled = std::any_of(part.parts.begin(), part.parts.end(), [&](const Part& p) {
    return isRow ? wantsWidth(p) : wantsHeight(p);
  });
  if (!filled) box->addStretch();
  return box;
}

QLayout* LayoutBuilder::makeGrid(const Part& part, QWidget* parent) {
  auto* grid = new QGridLayout;
  const int columns = std::max(1, part.columns);
  bool filled = false;
  int cell = 0;
  for (const Part& inner : part.parts) {
    const int row = cell / columns;
    const int column = cell++ % columns;
    if (inner.kind == Kind::Space) continue;  // an empty cell
    if (QWidget* widget = makeWidget(inner, parent)) {
      const bool own = isButton(inner);
      grid->addWidget(widget, row, column, own ? Qt::Alignment(Qt::AlignLeft) : Qt::Alignment());
    } else {
      grid->addLayout(makeLayout(inner, parent), row, column);
    }
    if (wantsWidth(inner)) {
      grid->setColumnStretch(column, 1);
      filled = true;
    }
  }
  if (!filled) grid->setColumnStretch(columns, 1);
  return grid;
}

QLayout* LayoutBuilder::makeFlow(const Part& part, QWidget* parent) {
  auto* flow = new FlowLayout(flows_);
  // Flows inside a column of this one agree with each other, not with it.
  const auto flowsAround = std::exchange(flows_, std::make_shared<FlowLayout::Page>());
  for (const Part& inner : part.parts) {
    if (inner.kind == Kind::Space) continue;
    if (QWidget* widget = makeWidget(inner, parent)) {
      flow->addWidget(widget);
    } else {
      flow->addLayout(makeLayout(inner, parent));
    }
  }
  flows_ = flowsAround;
  return flow;
}

QWidget* LayoutBuilder::makeGroup(const Part& part, QWidget* parent) {
  auto* frame = dynamic_cast<forms::Frame*>(part.control);
  auto* group = frame == nullptr ? new QGroupBox(toQt(part.title), parent)
                                 : widgets_.makeFrame(*frame, parent);
  if (frame != nullptr) made_[frame] = group;
  group->setLayout(makeBox(part, group));
  // A frame around nothing would be a riddle.
  std::vector<Control*> controls;
  for (const Part& inner : part.parts) {
    for (Control* control : controlsOf(inner)) controls.push_back(control);
  }
  const auto show = [group, frame, controls] {
    const bool wanted = frame == nullptr || frame->Visible;
    group->setVisible(
        wanted && (controls.empty() || std::any_of(controls.begin(), controls.end(),
                                                   [](Control* c) { return c->Visible.get(); })));
  };
  if (frame != nullptr) bindings_.on(frame->Visible.changed, show);
  for (Control* control : controls) bindings_.on(control->Visible.changed, show);
  show();
  return group;
}

QWidget* LayoutBuilder::makePages(const Part& part, QWidget* parent) {
  auto* strip = dynamic_cast<forms::TabStrip*>(part.control);
  if (strip == nullptr || strip->tabs().size() != part.parts.size()) {
    throw std::logic_error("pages need a tab strip with one tab for each of them");
  }
  QTabWidget* tabs = widgets_.makePages(*strip, parent);
  made_[strip] = tabs;
  tabOrder_.push_back(tabs->tabBar());
  const auto flowsAround = flows_;
  for (std::size_t i = 0; i < part.parts.size(); ++i) {
    flows_ = std::make_shared<FlowLayout::Page>();
    tabs->addTab(makeScrollingPage(part.parts[i], tabs, true), toQt(strip->tabs()[i].caption));
  }
  flows_ = flowsAround;
  widgets_.bindPages(*strip, *tabs);
  return tabs;
}

QWidget* LayoutBuilder::makeControl(Control& control, QWidget* parent) {
  QWidget* widget = widgets_.make(control, parent);
  made_[&control] = widget;
  if (widget->focusPolicy() != Qt::NoFocus) tabOrder_.push_back(widget);
  return widget;
}

QWidget* LayoutBuilder::makeScrollingPage(const Part& part, QWidget* parent, bool margins) {
  auto* content = new QWidget;
  // A lone control, group or strip gets a column around it.
  QLayout* layout = makeBox(part.kind == Kind::Column ? part : Part::column({part}), content);
  if (!margins) layout->setContentsMargins(0, 0, 0, 0);
  content->setLayout(layout);
  return new PageArea(content, parent);
}

void LayoutBuilder::connectBuddies() {
  for (const auto& [control, widget] : made_) {
    const auto* label = dynamic_cast<const forms::Label*>(control);
    if (label == nullptr || label->buddy() == nullptr) continue;
    const auto buddy = made_.find(label->buddy());
    if (buddy != made_.end()) static_cast<QLabel*>(widget)->setBuddy(buddy->second);
  }
}

}  // namespace korvex::qt
