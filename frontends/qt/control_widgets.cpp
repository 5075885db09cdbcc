// Buttons, labels and tabs, and what all widgets share.
#include "qt/control_widgets.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFontDatabase>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTabWidget>
#include <algorithm>

#include "qt/list_widgets.h"
#include "qt/text.h"
#include "qt/text_widgets.h"

namespace korvex::qt {
namespace {

constexpr qsizetype kWrapLabelsLongerThan = 60;

// Shows the grey state; a click never leads there, and out of it to unchecked.
class TriStateBox : public QCheckBox {
 public:
  using QCheckBox::QCheckBox;

 protected:
  void nextCheckState() override {
    setCheckState(checkState() == Qt::Unchecked ? Qt::Checked : Qt::Unchecked);
  }
};

// The arrow keys go through the group in its order, as in Windows: Qt goes by where the buttons
// stand.
class OptionRadio : public QRadioButton {
 public:
  using QRadioButton::QRadioButton;

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    switch (event->key()) {
      case Qt::Key_Up:
      case Qt::Key_Left:
        return choose(-1);
      case Qt::Key_Down:
      case Qt::Key_Right:
        return choose(1);
      default:
        QRadioButton::keyPressEvent(event);
    }
  }

 private:
  void choose(int step) {
    QList<QAbstractButton*> buttons = group()->buttons();
    buttons.removeIf(
        [this](QAbstractButton* b) { return b != this && (!b->isVisible() || !b->isEnabled()); });
    const qsizetype next = buttons.indexOf(this) + step + buttons.size();
    QAbstractButton* chosen = buttons[next % buttons.size()];
    chosen->setFocus(step < 0 ? Qt::BacktabFocusReason : Qt::TabFocusReason);
    chosen->click();
  }
};

// The Tab key stops at the button that is set; where none is, at each.
void placeTabStop(const QButtonGroup& group) {
  const QAbstractButton* set = group.checkedButton();
  for (QAbstractButton* button : group.buttons()) {
    button->setFocusPolicy(set == nullptr || set == button ? Qt::StrongFocus : Qt::ClickFocus);
  }
}

// As wide as its tabs: Qt would sooner put two arrows there.
class Pages : public QTabWidget {
 public:
  using QTabWidget::QTabWidget;
  QSize sizeHint() const override { return wideEnough(QTabWidget::sizeHint()); }
  QSize minimumSizeHint() const override { return wideEnough(QTabWidget::minimumSizeHint()); }

 private:
  QSize wideEnough(QSize size) const {
    constexpr int kWidest = 980;  // fits a small screen; beyond it the arrows are due
    const int tabs = tabBar()->sizeHint().width();
    return size.expandedTo({std::min(tabs, kWidest), 0});
  }
};

Qt::CheckState checkState(int value) {
  if (value == forms::vbGrayed) return Qt::PartiallyChecked;
  return value == forms::vbChecked ? Qt::Checked : Qt::Unchecked;
}

QString asLines(std::string_view text) { return toQt(text).replace("\r\n", "\n"); }

// A label with colors is a piece of a console.
void paint(const forms::Label& control, QLabel& label) {
  const auto& back = control.BackColor.get();
  const auto& fore = control.ForeColor.get();
  if (!back && !fore) return;
  QPalette palette = label.palette();
  const auto color = [](std::uint32_t bgr) {
    return QColor(bgr & 255, bgr >> 8 & 255, bgr >> 16 & 255);
  };
  if (back) palette.setColor(label.backgroundRole(), color(*back));
  if (fore) palette.setColor(label.foregroundRole(), color(*fore));
  label.setPalette(palette);
  label.setAutoFillBackground(back.has_value());
  label.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  label.setMargin(label.fontMetrics().height() / 2);
}

void setTabs(const forms::TabStrip& strip, QTabBar& bar) {
  for (int i = 0; i < bar.count(); ++i) {
    bar.setTabToolTip(i, tipText(strip.tabs()[static_cast<std::size_t>(i)].toolTip));
  }
  // Every tab is to be readable: no "...", and no pair of arrows before the window is too narrow.
  bar.setElideMode(Qt::ElideNone);
  if (bar.accessibleName().isEmpty()) bar.setAccessibleName("Pages");
}

}  // namespace

QWidget* ControlWidgets::make(forms::Control& control, QWidget* parent) {
  using forms::ControlKind;
  QWidget* widget = nullptr;
  switch (control.kind()) {
    case ControlKind::CheckBox:
      widget = makeCheckBox(static_cast<forms::CheckBox&>(control), parent);
      break;
    case ControlKind::OptionButton:
      widget = makeOptionButton(static_cast<forms::OptionButton&>(control), parent);
      break;
    case ControlKind::TextBox:
      widget = makeTextBox(static_cast<forms::TextBox&>(control), parent, bindings_);
      break;
    case ControlKind::ListBox:
      widget = makeListBox(static_cast<forms::ListBox&>(control), parent, bindings_);
      break;
    case ControlKind::ComboBox:
      widget = makeComboBox(static_cast<forms::ComboBox&>(control), parent, bindings_);
      break;
    case ControlKind::CommandButton:
      widget = makeCommandButton(static_cast<forms::CommandButton&>(control), parent);
      break;
    case ControlKind::Label:
      widget = makeLabel(static_cast<forms::Label&>(control), parent);
      break;
    case ControlKind::TabStrip:
      widget = makeTabBar(static_cast<forms::TabStrip&>(control), parent);
      break;
    case ControlKind::Frame:  // one that no group of the layout was made for
      return makeFrame(static_cast<forms::Frame&>(control), parent);
  }
  bindCommon(control, *widget);
  return widget;
}

QGroupBox* ControlWidgets::makeFrame(forms::Frame& frame, QWidget* parent) {
  auto* group = new QGroupBox(parent);
  bindings_.follow(frame.Caption, [&frame, group] { group->setTitle(toQt(frame.Caption.get())); });
  bindCommon(frame, *group);
  return group;
}

void ControlWidgets::bindCommon(forms::Control& control, QWidget& widget) {
  widget.setObjectName(toQt(control.name()));
  bindings_.follow(control.Enabled, [&] { widget.setEnabled(control.Enabled); });
  bindings_.follow(control.Visible, [&] { widget.setVisible(control.Visible); });
  bindings_.follow(control.ToolTipText, [&] {
    widget.setToolTip(tipText(control.ToolTipText.get()));
    // A disabled control's tip has the reason; a screen reader gets at it this way.
    widget.setAccessibleDescription(toQt(control.ToolTipText.get()));
  });
  bindings_.follow(control.WhatsThis,
                   [&] { widget.setWhatsThis(tipText(control.WhatsThis.get())); });
  const auto name = [&] {
    const QString spoken = toQt(control.accessibleName());
    if (!spoken.isEmpty()) widget.setAccessibleName(spoken);
  };
  bindings_.follow(control.AccessibleName, name);
  bindings_.on(control.Caption.changed, name);
}

QWidget* ControlWidgets::makeCheckBox(forms::CheckBox& control, QWidget* parent) {
  auto* box = new TriStateBox(parent);
  bindings_.follow(control.Caption, [&control, box] { box->setText(toQt(control.Caption.get())); });
  bindings_.follow(control.Value, [&control, box] {
    box->setTristate(control.Value == forms::vbGrayed);
    box->setCheckState(checkState(control.Value));
  });
  QObject::connect(box, &QCheckBox::clicked, box, [&control, box] {
    control.Value = box->isChecked() ? forms::vbChecked : forms::vbUnchecked;
  });
  return box;
}

QWidget* ControlWidgets::makeOptionButton(forms::OptionButton& control, QWidget* parent) {
  auto* button = new OptionRadio(parent);
  // Which buttons belong together the form says, not the frame around them.
  button->setAutoExclusive(false);
  QButtonGroup*& group = optionGroups_[control.group()];
  if (group == nullptr) group = new QButtonGroup(&window_);
  group->addButton(button);
  bindings_.follow(control.Caption,
                   [&control, button] { button->setText(toQt(control.Caption.get())); });
  bindings_.follow(control.Value, [&control, button, group = group] {
    // An exclusive group would refuse to have none set.
    group->setExclusive(false);
    button->setChecked(control.Value);
    group->setExclusive(true);
    placeTabStop(*group);
  });
  QObject::connect(button, &QRadioButton::clicked, button, [&control] { control.Value = true; });
  return button;
}

QWidget* ControlWidgets::makeCommandButton(forms::CommandButton& control, QWidget* parent) {
  auto* button = new QPushButton(parent);
  bindings_.follow(control.Caption,
                   [&control, button] { button->setText(toQt(control.Caption.get())); });
  // However it is pressed, by its mnemonic too, the field that was being edited is left first.
  QObject::connect(button, &QPushButton::pressed, button,
                   [button] { button->setFocus(Qt::OtherFocusReason); });
  QObject::connect(button, &QPushButton::clicked, button, [&control] { control.press(); });
  return button;
}

QWidget* ControlWidgets::makeLabel(forms::Label& control, QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setTextFormat(Qt::PlainText);
  const bool hasBuddy = control.buddy() != nullptr;
  bindings_.follow(control.Caption, [&control, label, hasBuddy] {
    const std::string& caption = control.Caption;
    const QString text = hasBuddy ? asLines(caption) : withoutMnemonics(caption);
    label->setText(QString(text).replace("\r\n", "\n"));
    // What is set out in columns by blanks would come apart.
    const bool columns = text.contains("   ");
    const bool wrap = !hasBuddy && !columns && text.size() > kWrapLabelsLongerThan;
    label->setWordWrap(wrap);
    if (wrap) label->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
  });
  const auto color = [&control, label] { paint(control, *label); };
  bindings_.follow(control.BackColor, color);
  bindings_.on(control.ForeColor.changed, color);
  return label;
}

QWidget* ControlWidgets::makeTabBar(forms::TabStrip& control, QWidget* parent) {
  auto* bar = new QTabBar(parent);
  for (const forms::Tab& tab : control.tabs()) bar->addTab(toQt(tab.caption));
  setTabs(control, *bar);
  bindings_.follow(control.SelectedItem,
                   [&control, bar] { bar->setCurrentIndex(control.SelectedItem - 1); });
  QObject::connect(bar, &QTabBar::currentChanged, bar,
                   [&control](int index) { control.SelectedItem = index + 1; });
  return bar;
}

QTabWidget* ControlWidgets::makePages(forms::TabStrip& strip, QWidget* parent) {
  auto* tabs = new Pages(parent);
  bindCommon(strip, *tabs);
  return tabs;
}

void ControlWidgets::bindPages(forms::TabStrip& strip, QTabWidget& tabs) {
  for (int i = 0; i < tabs.count(); ++i) {
    tabs.widget(i)->setAccessibleName(
        withoutMnemonics(strip.tabs()[static_cast<std::size_t>(i)].caption));
  }
  tabs.tabBar()->setAccessibleName(tabs.accessibleName());
  setTabs(strip, *tabs.tabBar());
  bindings_.follow(strip.SelectedItem,
                   [&strip, &tabs] { tabs.setCurrentIndex(strip.SelectedItem - 1); });
  QObject::connect(&tabs, &QTabWidget::currentChanged, &tabs,
                   [&strip](int index) { strip.SelectedItem = index + 1; });
}

}  // namespace korvex::qt
