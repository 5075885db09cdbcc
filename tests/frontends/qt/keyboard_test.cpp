// Everything can be done without a mouse.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMenu>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QWhatsThis>

#include "qt/form_view.h"
#include "sample_form.h"

namespace korvex::test {
namespace {

struct Keyboard : ::testing::Test {
  SampleForm form;
  qt::FormView view{form};
  int added = 0;
  int accepted = 0;
  int cancelled = 0;

  void SetUp() override {
    form.cmdAdd.Click += [this] { ++added; };
    form.cmdOk.Click += [this] { ++accepted; };
    form.cmdCancel.Click += [this] { ++cancelled; };
    view.showInPlace();
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
  }
  QWidget* widget(const forms::Control& control) { return view.widgetOf(control); }
  void focus(const forms::Control& control) { widget(control)->setFocus(); }
  static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
  }
  std::string focused() { return QApplication::focusWidget()->objectName().toStdString(); }
};

TEST_F(Keyboard, TabGoesThroughThePageAndRoundAndSkipsWhatIsDisabled) {
  form.chkTwo.Enabled = false;
  auto* tabs = qobject_cast<QTabWidget*>(widget(form.tabPages));
  tabs->tabBar()->setFocus();
  std::vector<std::string> stops;
  do {
    press(Qt::Key_Tab);
    stops.push_back(focused());
  } while (QApplication::focusWidget() != tabs->tabBar() && stops.size() < 20);
  stops.pop_back();
  // Of the option buttons the one that is set has the stop.
  EXPECT_EQ(stops, (std::vector<std::string>{"chkOne", "chkThree", "chkFour", "optTwo", "cmdOk",
                                             "cmdCancel"}));
  press(Qt::Key_Right);
  EXPECT_EQ(form.tabPages.SelectedItem.get(), 2);
}

TEST_F(Keyboard, SpaceTogglesAndArrowsChoose) {
  focus(form.chkOne);
  press(Qt::Key_Space);
  EXPECT_EQ(form.chkOne.Value, forms::vbChecked);
  focus(form.optTwo);
  press(Qt::Key_Up);
  EXPECT_TRUE(form.optOne.Value);
  EXPECT_FALSE(form.optTwo.Value);
}

TEST_F(Keyboard, AMnemonicActsOnThePageThatIsShown) {
  focus(form.chkFour);
  press(Qt::Key_O, Qt::AltModifier);
  EXPECT_TRUE(QTest::qWaitFor([this] { return form.chkOne.Value == forms::vbChecked; }));
  press(Qt::Key_A, Qt::AltModifier);  // a button of the other page
  QTest::qWait(150);
  EXPECT_EQ(added, 0);

  form.tabPages.SelectedItem = 2;
  press(Qt::Key_N, Qt::AltModifier);
  EXPECT_EQ(focused(), "txtName") << "a label's mnemonic moves to its field";
  press(Qt::Key_A, Qt::AltModifier);
  EXPECT_TRUE(QTest::qWaitFor([this] { return added == 1; }));
}

TEST_F(Keyboard, AButtonPressedByItsMnemonicLeavesTheFieldFirst) {
  form.tabPages.SelectedItem = 2;
  bool leftBefore = false;
  form.txtName.LostFocus += [&] { leftBefore = added == 0; };
  focus(form.txtName);
  press(Qt::Key_A, Qt::AltModifier);
  EXPECT_TRUE(QTest::qWaitFor([this] { return added == 1; }));
  EXPECT_TRUE(leftBefore);
}

TEST_F(Keyboard, EnterPressesTheDefaultOrTheFocusedButtonAndEscapeTheCancelButton) {
  focus(form.chkOne);
  press(Qt::Key_Return);
  EXPECT_EQ(accepted, 1);
  press(Qt::Key_Escape);
  EXPECT_EQ(cancelled, 1);
  EXPECT_TRUE(view.isVisible()) << "the form decides whether it closes";

  form.tabPages.SelectedItem = 2;
  focus(form.txtName);
  press(Qt::Key_Return);
  focus(form.lstItems);
  press(Qt::Key_Enter);
  EXPECT_EQ(accepted, 3);
  focus(form.cmdAdd);
  press(Qt::Key_Return);
  EXPECT_EQ(added, 1);
  focus(form.txtText);
  press(Qt::Key_Return);
  EXPECT_EQ(accepted, 3) << "in a field of several lines Enter is a line";
  form.cmdOk.Enabled = false;
  focus(form.chkOne);
  press(Qt::Key_Return);
  EXPECT_EQ(accepted, 3);
}

TEST(KeyboardWithoutDefault, EnterPressesOnlyTheButtonThatHasTheFocus) {
  forms::Form form("frm", "");
  forms::CheckBox box(form, "chk", "&Box");
  forms::CommandButton button(form, "cmd", "&Button");
  form.layout = forms::Layout::column({forms::Layout::of(box), forms::Layout::of(button)});
  int presses = 0;
  button.Click += [&presses] { ++presses; };
  qt::FormView view(form);
  view.showInPlace();
  view.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
  for (forms::Control* control : form.controls()) {
    view.widgetOf(*control)->setFocus();
    QTest::keyClick(view.widgetOf(*control), Qt::Key_Return);
    QTest::keyClick(view.widgetOf(*control), Qt::Key_Escape);
  }
  EXPECT_EQ(presses, 1);
  EXPECT_TRUE(view.isVisible());
}

TEST_F(Keyboard, HelpComesByShiftF1) {
  form.chkOne.WhatsThis = "What the switch does";
  focus(form.chkOne);
  press(Qt::Key_F1, Qt::ShiftModifier);
  const auto helpIsShown = [] {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (window->isVisible() && window->inherits("QWhatsThat")) return true;
    }
    return false;
  };
  EXPECT_TRUE(QTest::qWaitFor(helpIsShown));
  QWhatsThis::hideText();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !helpIsShown(); }));
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(Keyboard, TheRightMouseButtonOffersHelpOnADisabledControlToo) {
  form.chkOne.WhatsThis = "What the switch does";
  QString offered;
  QTimer::singleShot(50, [&offered] {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (menu == nullptr) return;
    offered = menu->actions().constFirst()->text();
    menu->close();
  });
  form.chkOne.Enabled = false;
  const QPoint place = widget(form.chkOne)->mapTo(&view, widget(form.chkOne)->rect().center());
  QContextMenuEvent event(QContextMenuEvent::Mouse, place, view.mapToGlobal(place));
  QApplication::sendEvent(&view, &event);
  EXPECT_EQ(offered, "&What's This?");
}

}  // namespace
}  // namespace korvex::test
