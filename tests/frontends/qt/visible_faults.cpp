// Looking at a window as a person does.
#include "frontends/qt/visible_faults.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QScrollArea>
#include <QTabBar>
#include <QTabWidget>
#include <map>

#include "forms/controls.h"

namespace korvex::test {
namespace {

struct Seen {
  const forms::Control* control;
  QWidget* widget;
  QRect place;  // in the window
};

QRect placeIn(const QWidget& window, const QWidget& widget) {
  return {widget.mapTo(&window, QPoint(0, 0)), widget.size()};
}

std::vector<Seen> visibleControls(const qt::FormView& view) {
  std::vector<Seen> seen;
  for (const forms::Control* control : view.form().controls()) {
    QWidget* widget = view.widgetOf(*control);
    if (widget == nullptr || !widget->isVisible()) continue;
    // Pages are the frame around the others; their tabs are what a person sees of them.
    if (auto* pages = qobject_cast<QTabWidget*>(widget)) widget = pages->tabBar();
    seen.push_back({control, widget, placeIn(view, *widget)});
  }
  return seen;
}

QString textOf(const QWidget& widget) {
  if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) return button->text();
  const auto* label = qobject_cast<const QLabel*>(&widget);
  return label == nullptr ? QString() : label->text();
}

class Inspection {
 public:
  explicit Inspection(const qt::FormView& view) : view_(view), seen_(visibleControls(view)) {}

  std::vector<std::string> run() {
    for (const forms::Control* forgotten : view_.unplacedControls()) {
      say(*forgotten, "is not in the layout");
    }
    for (const Seen& seen : seen_) {
      findCutOff(seen);
      findNameless(seen);
    }
    findGroupsCutOff();
    findOverlaps();
    findSharedMnemonics();
    findJumps();
    return faults_;
  }

 private:
  void say(const forms::Control& control, const std::string& fault) {
    faults_.push_back(control.name() + " " + fault);
  }

  void findCutOff(const Seen& seen) {
    if (!textOf(*seen.widget).isEmpty()) {
      const auto* label = qobject_cast<const QLabel*>(seen.widget);
      const bool wraps = label != nullptr && label->wordWrap();
      const QSize wanted =
          wraps ? QSize(0, label->heightForWidth(label->width())) : seen.widget->sizeHint();
      if (seen.place.width() < wanted.width() || seen.place.height() < wanted.height()) {
        say(*seen.control, "is cut off");
      }
    }
    if (const auto* tabs = qobject_cast<const QTabBar*>(seen.widget)) {
      if (tabs->sizeHint().width() > seen.place.width()) say(*seen.control, "hides some tabs");
    }
    for (const QWidget* outer = seen.widget->parentWidget(); outer != nullptr;
         outer = outer == &view_ ? nullptr : outer->parentWidget()) {
      // Below the edge of a page one can scroll; beside it nothing is found.
      const QRect room = placeIn(view_, *outer);
      if (seen.place.left() < room.left() || seen.place.right() > room.right()) {
        say(*seen.control, "stands outside of what surrounds it");
        return;
      }
    }
    if (!inScrollArea(*seen.widget) && !view_.rect().contains(seen.place)) {
      say(*seen.control, "stands outside the window");
    }
  }

  static bool inScrollArea(const QWidget& widget) {
    for (const QWidget* outer = widget.parentWidget(); outer != nullptr;
         outer = outer->parentWidget()) {
      if (qobject_cast<const QScrollArea*>(outer) != nullptr) return true;
    }
    return false;
  }

  void findGroupsCutOff() {
    for (const QGroupBox* group : view_.findChildren<QGroupBox*>()) {
      if (!group->isVisible()) continue;
      if (group->fontMetrics().horizontalAdvance(group->title()) > group->width()) {
        faults_.push_back("the title \"" + group->title().toStdString() + "\" is cut off");
      }
    }
  }

  void findNameless(const Seen& seen) {
    if (seen.widget->focusPolicy() == Qt::NoFocus) return;
    if (seen.widget->accessibleName().isEmpty() && textOf(*seen.widget).isEmpty()) {
      say(*seen.control, "has no name for screen readers");
    }
  }

  void findOverlaps() {
    for (std::size_t i = 0; i < seen_.size(); ++i) {
      for (std::size_t j = i + 1; j < seen_.size(); ++j) {
        if (seen_[i].place.intersects(seen_[j].place)) {
          say(*seen_[i].control, "overlaps " + seen_[j].control->name());
        }
      }
    }
  }

  void findSharedMnemonics() {
    std::map<QString, const forms::Control*> owners;
    for (const Seen& seen : seen_) {
      const QKeySequence key = QKeySequence::mnemonic(textOf(*seen.widget));
      if (key.isEmpty()) continue;
      const auto [owner, first] = owners.emplace(key.toString(), seen.control);
      if (!first) {
        say(*seen.control,
            "shares " + key.toString().toStdString() + " with " + owner->second->name());
      }
    }
  }

  // Along the Tab key one goes down, or right to the top of the next column, or down and back left.
  void findJumps() {
    std::map<const QWidget*, const Seen*> bySight;
    for (const Seen& seen : seen_) bySight[seen.widget] = &seen;
    const Seen* before = nullptr;
    const QWidget* first = seen_.empty() ? nullptr : firstOfChain();
    for (const QWidget* widget = first; widget != nullptr;
         widget = widget->nextInFocusChain() == first ? nullptr : widget->nextInFocusChain()) {
      const auto found = bySight.find(widget);
      if (found == bySight.end() || widget->focusPolicy() == Qt::NoFocus) continue;
      const Seen* now = found->second;
      if (before != nullptr && now->place.bottom() < before->place.top() &&
          now->place.left() <= before->place.left()) {
        say(*now->control, "comes after " + before->control->name() + " but stands before it");
      }
      if (before != nullptr && now->place.right() < before->place.left() &&
          now->place.top() <= before->place.top()) {
        say(*now->control, "comes after " + before->control->name() + " but stands left of it");
      }
      before = now;
    }
  }

  // The window itself opens the chain.
  const QWidget* firstOfChain() const { return view_.nextInFocusChain(); }

  const qt::FormView& view_;
  std::vector<Seen> seen_;
  std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> visibleFaults(const qt::FormView& view) { return Inspection(view).run(); }

}  // namespace korvex::test
