// The visual check of a window.
#include "form_check.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QScrollArea>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>
#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <utility>

#include "engine/catalogue.h"
#include "qt/text.h"

namespace korvex::test {
namespace {

using forms::Control;
using Kind = forms::Layout::Kind;
using Part = forms::Layout;
using Path = std::vector<const Part*>;

constexpr int kWidestWindow = 1024;
constexpr int kTallestWindow = 720;

struct Placed {
  const Control* control;
  QWidget* widget;
  Path path;  // from the outermost part of the layout
};

// Given captions beside those of rows.
const std::array<std::pair<std::string, std::string>, 4> kGivenCaptions{{
    {"frmWinTweaksII", "cmdExplorerTitleBar"},
    {"frmMoreSecurity", "cmdRestrictRun"},
    {"frmMoreSecurity", "lblHideDrives"},
    {"frmNT4_Win2KCont", "cmdScreensaver"},
}};

struct MnemonicOwner {
  std::string name;
  bool given;
};

class PageCheck {
 public:
  PageCheck(qt::FormView& view, std::string page, std::vector<std::string>& complaints)
      : view_(view), page_(std::move(page)), complaints_(complaints) {}

  // Pages: the index of the page that is shown.
  void collect(const Part& part, int pageShown, Path path = {}) {
    path.push_back(&part);
    // A frame lies around its controls: checkGroups looks at it.
    if (part.control != nullptr && part.kind != Kind::Group) addControl(*part.control, path);
    if (part.kind == Kind::Pages) return collect(part.parts.at(pageShown), pageShown, path);
    for (const Part& inner : part.parts) collect(inner, pageShown, path);
  }

  void run() {
    for (const Placed& placed : placed_) {
      checkText(placed);
      checkPlace(placed);
      checkName(placed);
    }
    checkGroups();
    checkOverlap();
    checkMnemonics();
    checkTabOrder();
  }

 private:
  void complain(const std::string& what) {
    const std::string where = page_.empty() ? "" : " (page " + page_ + ")";
    complaints_.push_back(view_.form().name() + where + ": " + what);
  }

  void addControl(const Control& control, const Path& path) {
    if (!control.Visible) return;
    QWidget* widget = view_.widgetOf(control);
    if (auto* tabs = qobject_cast<QTabWidget*>(widget)) widget = tabs->tabBar();
    if (widget == nullptr) {
      complain(control.name() + " has no widget");
    } else if (!widget->isVisible() || widget->size().isEmpty()) {
      complain(control.name() + " cannot be seen");
    } else {
      placed_.push_back({&control, widget, path});
    }
  }

  QRect rectOf(const QWidget& widget) const {
    return {widget.mapTo(&view_, QPoint(0, 0)), widget.size()};
  }

  static QSize sizeForText(const QWidget& widget) {
    if (const auto* label = qobject_cast<const QLabel*>(&widget); label && label->wordWrap()) {
      return {0, label->heightForWidth(label->width())};
    }
    const bool fixedText = qobject_cast<const QAbstractButton*>(&widget) != nullptr ||
                           qobject_cast<const QLabel*>(&widget) != nullptr ||
                           qobject_cast<const QComboBox*>(&widget) != nullptr;
    if (fixedText) return widget.sizeHint();
    if (qobject_cast<const QLineEdit*>(&widget) != nullptr) {
      return {widget.minimumSizeHint().width(), widget.sizeHint().height()};
    }
    return widget.minimumSizeHint();
  }

  void checkText(const Placed& placed) {
    if (const auto* bar = qobject_cast<const QTabBar*>(placed.widget)) {
      for (const auto* arrow : bar->findChildren<QToolButton*>()) {
        if (arrow->isVisible()) return complain(placed.control->name() + " hides some of its tabs");
      }
      return;
    }
    const QSize needed = sizeForText(*placed.widget);
    const QSize has = placed.widget->size();
    if (needed.width() > has.width() || needed.height() > has.height()) {
      complain(placed.control->name() + " is cut off: it has " + sizeText(has) + " and needs " +
               sizeText(needed));
    }
  }

  static std::string sizeText(QSize size) {
    return std::to_string(size.width()) + "x" + std::to_string(size.height());
  }

  void checkPlace(const Placed& placed) {
    const std::string& name = placed.control->name();
    QRect room = view_.rect();
    for (QWidget* outer = placed.widget->parentWidget(); outer != &view_;
         outer = outer->parentWidget()) {
      const auto* area = qobject_cast<const QScrollArea*>(outer);
      if (area == nullptr) continue;
      // What lies further down is reached by scrolling.
      room = rectOf(*area->widget());
      if (area->widget()->width() > area->viewport()->width()) {
        complain(name + " stands on a page wider than its window");
      }
      break;
    }
    if (!room.contains(rectOf(*placed.widget))) complain(name + " leaves its window");
  }

  void checkName(const Placed& placed) {
    if (placed.widget->focusPolicy() == Qt::NoFocus) return;
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(placed.widget);
    if (interface == nullptr || interface->text(QAccessible::Name).isEmpty()) {
      complain(placed.control->name() + " has no accessible name");
    }
  }

  void checkGroups() {
    for (const auto* group : view_.findChildren<QGroupBox*>()) {
      if (!group->isVisible()) continue;
      if (group->minimumSizeHint().width() > group->width()) {
        complain("the title or content of group '" + qt::fromQt(group->title()) + "' is cut off");
      }
    }
  }

  void checkOverlap() {
    for (std::size_t i = 0; i < placed_.size(); ++i) {
      const QRect one = rectOf(*placed_[i].widget);
      for (std::size_t j = i + 1; j < placed_.size(); ++j) {
        // What scrolls is cut at the edge of its page, so it never covers what stands beside it.
        if (pageOf(*placed_[i].widget) != pageOf(*placed_[j].widget)) continue;
        if (one.intersects(rectOf(*placed_[j].widget))) {
          complain(placed_[i].control->name() + " and " + placed_[j].control->name() + " overlap");
        }
      }
    }
  }

  const QWidget* pageOf(const QWidget& widget) const {
    const QWidget* outer = widget.parentWidget();
    while (outer != &view_ && qobject_cast<const QScrollArea*>(outer) == nullptr) {
      outer = outer->parentWidget();
    }
    return outer;
  }

  void checkMnemonics() {
    for (const Placed& placed : placed_) {
      const auto* label = dynamic_cast<const forms::Label*>(placed.control);
      if (label != nullptr && label->buddy() == nullptr) continue;
      takeMnemonic(qt::toQt(placed.control->Caption.get()), placed.control->name(),
                   isGiven(*placed.control));
      if (const auto* strip = dynamic_cast<const forms::TabStrip*>(placed.control)) {
        for (const forms::Tab& tab : strip->tabs()) {
          takeMnemonic(qt::toQt(tab.caption), "the tab " + tab.caption);
        }
      }
    }
    for (const auto* group : view_.findChildren<QGroupBox*>()) {
      if (group->isVisible())
        takeMnemonic(group->title(), "the group " + group->title().toStdString());
    }
  }

  // Whether the caption is the product's own: of a dialog that has more boxes than there are
  // letters, or one that a machine brings. Such boxes may share one, which then goes from one to
  // the next.
  bool isGiven(const Control& control) const {
    const std::string& form = view_.form().name();
    if (std::ranges::find(kGivenCaptions, std::pair(form, control.name())) !=
        kGivenCaptions.end()) {
      return true;
    }
    const engine::Tweak* row = engine::findTweakOf(form, control.name());
    return row != nullptr && (form != "frmMain" || row->adapt != nullptr);
  }

  void takeMnemonic(const QString& text, const std::string& owner, bool given = false) {
    const QString keys = QKeySequence::mnemonic(text).toString();
    if (keys.isEmpty()) return;
    const auto [known, isNew] = mnemonics_.emplace(keys, MnemonicOwner{owner, given});
    if (isNew || (given && known->second.given)) return;
    complain(known->second.name + " and " + owner + " both have " + keys.toStdString());
  }

  std::vector<const Placed*> inTabOrder() const {
    std::vector<const Placed*> order;
    for (const QWidget* at = view_.nextInFocusChain(); at != &view_; at = at->nextInFocusChain()) {
      if (!at->isEnabled() || (at->focusPolicy() & Qt::TabFocus) == 0) continue;
      for (const Placed& placed : placed_) {
        if (placed.widget == at) order.push_back(&placed);
      }
    }
    return order;
  }

  void checkTabOrder() {
    const auto order = inTabOrder();
    for (std::size_t i = 1; i < order.size(); ++i) {
      const Placed& from = *order[i - 1];
      const Placed& to = *order[i];
      if (goesBack(from, to)) {
        complain("the Tab key goes back from " + from.control->name() + " to " +
                 to.control->name());
      }
    }
  }

  bool goesBack(const Placed& from, const Placed& to) const {
    // What is scrolled out of sight stands where its page stands.
    const QWidget* fromPage = pageOf(*from.widget);
    const QWidget* toPage = pageOf(*to.widget);
    const bool onePage = fromPage == toPage;
    const QRect a = rectOf(onePage || fromPage == &view_ ? *from.widget : *fromPage);
    const QRect b = rectOf(onePage || toPage == &view_ ? *to.widget : *toPage);
    const bool sameLine = std::min(a.bottom(), b.bottom()) - std::max(a.top(), b.top()) >
                          std::min(a.height(), b.height()) / 2;
    const bool sameColumn = std::min(a.right(), b.right()) - std::max(a.left(), b.left()) >
                            std::min(a.width(), b.width()) / 2;
    if (sameLine) return b.left() < a.left();
    if (sameColumn) return b.top() < a.top();
    const bool besideEachOther = partedBy(from.path, to.path);
    if (besideEachOther) {
      // Of two frames in one column the lower one comes next, wherever in them the controls stand.
      const QRect frameOfA = frameOf(*from.widget);
      const QRect frameOfB = frameOf(*to.widget);
      if (frameOfA.left() == frameOfB.left()) return frameOfB.top() < frameOfA.top();
      return b.left() < a.left();
    }
    return b.top() < a.top();
  }

  QRect frameOf(const QWidget& widget) const {
    const QWidget* frame = &widget;
    while (frame != &view_ && qobject_cast<const QGroupBox*>(frame) == nullptr) {
      frame = frame->parentWidget();
    }
    return rectOf(frame == &view_ ? widget : *frame);
  }

  // Whether the part in which the two stand apart fills its columns one after the other.
  static bool partedBy(const Path& one, const Path& other) {
    const Part* common = nullptr;
    for (std::size_t i = 0; i < std::min(one.size(), other.size()) && one[i] == other[i]; ++i) {
      common = one[i];
    }
    return common != nullptr && (common->kind == Kind::Flow || common->kind == Kind::Row);
  }

  qt::FormView& view_;
  std::string page_;
  std::vector<std::string>& complaints_;
  std::vector<Placed> placed_;
  std::map<QString, MnemonicOwner> mnemonics_;
};

const Part* findPages(const Part& part) {
  if (part.kind == Kind::Pages) return &part;
  for (const Part& inner : part.parts) {
    if (const Part* pages = findPages(inner)) return pages;
  }
  return nullptr;
}

void checkWindow(qt::FormView& view, std::vector<std::string>& complaints) {
  const std::string name = view.form().name();
  const QSize size = view.size().expandedTo(view.minimumSizeHint());
  if (size.width() > kWidestWindow || size.height() > kTallestWindow) {
    complaints.push_back(name + ": the window is larger than a small screen");
  }
  for (const Control* control : view.unplacedControls()) {
    if (control->Visible)
      complaints.push_back(name + ": " + control->name() + " is not in the layout");
  }
  if (const auto* status = view.findChild<QLabel*>("statusText")) {
    if (status->isVisible() && status->sizeHint().width() > status->width()) {
      complaints.push_back(name + ": the status text is cut off");
    }
  }
}

}  // namespace

std::vector<std::string> checkForm(qt::FormView& view) {
  std::vector<std::string> complaints;
  QApplication::processEvents();
  checkWindow(view, complaints);
  const Part& layout = view.form().layout;
  const Part* pages = findPages(layout);
  auto* tabs =
      pages == nullptr ? nullptr : qobject_cast<QTabWidget*>(view.widgetOf(*pages->control));
  const int before = tabs == nullptr ? 0 : tabs->currentIndex();
  const int count = tabs == nullptr ? 1 : tabs->count();
  for (int page = 0; page < count; ++page) {
    if (tabs != nullptr) tabs->setCurrentIndex(page);
    QApplication::processEvents();
    PageCheck check(view, tabs == nullptr ? "" : qt::fromQt(tabs->tabText(page)), complaints);
    check.collect(layout, page);
    check.run();
  }
  if (tabs != nullptr) tabs->setCurrentIndex(before);
  return complaints;
}

}  // namespace korvex::test
