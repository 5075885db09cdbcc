// The window of a form: controls and widgets stay in step, and the form's wishes are kept.
#include "qt/form_view.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QStatusBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

#include "qt/qt_host.h"
#include "sample_form.h"

namespace korvex::test {
namespace {

struct View : ::testing::Test {
  SampleForm form;
  qt::FormView view{form};

  template <typename T>
  T& widget(const forms::Control& control) {
    return dynamic_cast<T&>(*view.widgetOf(control));
  }
  void show() {
    view.showInPlace();
    QApplication::processEvents();
  }
  void showSecondPage() {
    form.tabPages.SelectedItem = 2;
    show();
  }
};

TEST_F(View, AGreyBoxShowsGreyAndAClickClearsItOnce) {
  int clicks = 0;
  form.chkOne.Click += [&clicks] { ++clicks; };
  auto& box = widget<QCheckBox>(form.chkOne);
  form.chkOne.Value = forms::vbGrayed;
  EXPECT_EQ(box.checkState(), Qt::PartiallyChecked);
  EXPECT_EQ(clicks, 1);

  box.click();
  EXPECT_EQ(form.chkOne.Value, forms::vbUnchecked);
  box.click();
  EXPECT_EQ(form.chkOne.Value, forms::vbChecked);
  box.click();
  EXPECT_EQ(form.chkOne.Value, forms::vbUnchecked);
  EXPECT_EQ(clicks, 4);
}

TEST_F(View, AHandlerThatPutsTheBoxBackIsShown) {
  form.chkOne.Click += [this] { form.chkOne.Value = forms::vbUnchecked; };
  auto& box = widget<QCheckBox>(form.chkOne);
  box.click();
  EXPECT_EQ(box.checkState(), Qt::Unchecked);
}

TEST_F(View, OptionButtonsFollowTheFormAlsoToNoneSet) {
  auto& one = widget<QRadioButton>(form.optOne);
  auto& two = widget<QRadioButton>(form.optTwo);
  one.click();
  EXPECT_TRUE(form.optOne.Value);
  EXPECT_FALSE(form.optTwo.Value || two.isChecked());

  form.optOne.Value = false;
  EXPECT_FALSE(one.isChecked() || two.isChecked());
}

TEST_F(View, TypingStopsAtTheLengthAndTextOfTheFormIsNeverCut) {
  auto& field = widget<QLineEdit>(form.txtName);
  showSecondPage();
  QTest::keyClicks(&field, "123456789");
  EXPECT_EQ(form.txtName.Text.get(), "12345678");

  form.txtName.Text = "much longer than eight";
  EXPECT_EQ(field.text(), "much longer than eight");
  field.setCursorPosition(0);
  QTest::keyClicks(&field, "x");
  EXPECT_EQ(form.txtName.Text.get(), "much longer than eight");
}

TEST_F(View, SeveralLinesKeepTheirLengthAndWindowsLineEnds) {
  auto& field = widget<QPlainTextEdit>(form.txtText);
  showSecondPage();
  QTest::keyClicks(&field, "ab");
  QTest::keyClick(&field, Qt::Key_Return);
  QTest::keyClicks(&field, "cdefghijkl");
  EXPECT_EQ(form.txtText.Text.get(), "ab\r\ncdefghi");

  form.txtText.Text = "x\r\ny";
  EXPECT_EQ(field.toPlainText(), "x\ny");
  EXPECT_EQ(form.txtText.Text.get(), "x\r\ny");

  // A no-break space stays one when something else is typed.
  form.txtText.Text = "\xC2\xA0\r\n";
  QTest::keyClicks(&field, "z");
  EXPECT_EQ(form.txtText.Text.get(), "z\xC2\xA0\r\n");
}

TEST_F(View, LeavingAFieldIsToldOnceAndNotForAnotherWindow) {
  showSecondPage();
  view.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
  int left = 0;
  form.txtName.LostFocus += [&left] { ++left; };
  widget<QLineEdit>(form.txtName).setFocus();
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  EXPECT_EQ(left, 0);
  view.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&view));

  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(left, 1);
}

TEST_F(View, AListShowsItemsAsTheyComeAndGo) {
  auto& list = widget<QListView>(form.lstItems);
  int doubleClicks = 0;
  form.lstItems.DblClick += [&doubleClicks] { ++doubleClicks; };
  showSecondPage();
  form.lstItems.ListIndex = 2;
  form.lstItems.RemoveItem(0);
  EXPECT_EQ(list.model()->rowCount(), 2);
  EXPECT_EQ(list.currentIndex().data().toString(), "Gamma");
  form.lstItems.AddItem("Delta");
  EXPECT_EQ(form.lstItems.stateText(), "Gamma");

  const QPoint first = list.visualRect(list.model()->index(0, 0)).center();
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, first);
  EXPECT_EQ(form.lstItems.stateText(), "Beta");
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, first);
  EXPECT_EQ(doubleClicks, 1);
  form.lstItems.Clear();
  EXPECT_EQ(list.model()->rowCount(), 0);
  EXPECT_FALSE(list.currentIndex().isValid());
}

TEST_F(View, ComboBoxesShowTheSelectionAndTakeFreeTextWhereItIsAllowed) {
  auto& fixed = widget<QComboBox>(form.cboFixed);
  auto& free = widget<QComboBox>(form.cboFree);
  showSecondPage();
  EXPECT_EQ(fixed.currentIndex(), -1);
  form.cboFixed.ListIndex = 1;
  EXPECT_EQ(fixed.currentText(), "Beta");
  fixed.setFocus();
  QTest::keyClick(&fixed, Qt::Key_Down);
  EXPECT_EQ(form.cboFixed.Text.get(), "Gamma");

  form.cboFree.ListIndex = 0;
  QTest::keyClicks(free.lineEdit(), "s");
  EXPECT_EQ(form.cboFree.Text.get(), "Alphas");
  EXPECT_EQ(form.cboFree.ListIndex.get(), -1);
  form.cboFree.Text = "own";
  form.cboFree.AddItem("Delta");
  EXPECT_EQ(free.currentText(), "own");
}

TEST_F(View, EnabledVisibleTipsAndNamesFollowTheForm) {
  show();
  auto& box = widget<QCheckBox>(form.chkOne);
  form.chkOne.Enabled = false;
  form.chkOne.ToolTipText = "Not <b>here</b>";
  EXPECT_FALSE(box.isEnabled());
  EXPECT_EQ(box.accessibleDescription(), "Not <b>here</b>");
  EXPECT_EQ(box.toolTip(), "<qt>Not &lt;b&gt;here&lt;/b&gt;</qt>");
  form.chkOne.Caption = "&New text";
  EXPECT_EQ(box.text(), "&New text");
  EXPECT_EQ(box.accessibleName(), "New text");

  auto& group = dynamic_cast<QGroupBox&>(*widget<QRadioButton>(form.optOne).parentWidget());
  form.optOne.Visible = false;
  EXPECT_TRUE(group.isVisible());
  form.optTwo.Visible = false;
  EXPECT_FALSE(group.isVisible()) << "a frame around nothing";
  form.optTwo.Visible = true;
  EXPECT_TRUE(group.isVisible());
}

TEST_F(View, TheTabsAndTheFormShowTheSamePage) {
  auto& tabs = widget<QTabWidget>(form.tabPages);
  form.tabPages.SelectedItem = 2;
  EXPECT_EQ(tabs.currentIndex(), 1);
  tabs.setCurrentIndex(0);
  EXPECT_EQ(form.tabPages.SelectedItem.get(), 1);
}

TEST_F(View, StatusAndProgressAreShownWhileThereIsSomethingToTell) {
  show();
  auto& bar = *view.findChild<QStatusBar*>();
  auto& progress = *view.findChild<QProgressBar*>();
  EXPECT_FALSE(bar.isVisible());
  form.StatusText = "two changes";
  EXPECT_TRUE(bar.isVisible());
  EXPECT_EQ(view.findChild<QLabel*>("statusText")->text(), "two changes");

  form.Busy = true;
  form.Progress = 40;
  EXPECT_FALSE(progress.isVisible()) << "what is done soon would only flicker";
  view.progressDelay = 0;
  form.Progress = 41;
  EXPECT_TRUE(progress.isVisible());
  EXPECT_EQ(progress.value(), 41);
  ASSERT_NE(QApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
  form.Busy = false;
  EXPECT_FALSE(progress.isVisible());
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(View, AWindowWithoutAPlaceIsCentredAndItsPlaceIsKept) {
  show();
  const QRect screen = view.screen()->availableGeometry();
  EXPECT_NEAR(view.geometry().center().x(), screen.center().x(), 1);
  view.move(33, 44);
  QApplication::processEvents();
  EXPECT_EQ(form.place, (forms::WindowPlace{0, 33, 44}));

  view.showMinimized();
  QApplication::processEvents();
  EXPECT_EQ(form.place, (forms::WindowPlace{1, 33, 44}));
}

TEST_F(View, APlaceOffEveryScreenIsMovedOntoOne) {
  form.place = forms::WindowPlace{0, 90000, -1};
  show();
  const QRect screen = view.screen()->availableGeometry();
  EXPECT_TRUE(screen.contains(view.frameGeometry()));
  EXPECT_EQ(view.frameGeometry().right(), screen.right());
  EXPECT_NEAR(view.frameGeometry().center().y(), screen.center().y(), 2) << "below 1: centred";
}

TEST(Flow, HasAsManyColumnsAsTheWidthAllowsFilledOneAfterTheOther) {
  FlowForm form(24);
  qt::FormView view(form);
  view.showInPlace();
  const auto columnOf = [&](const char* name) {
    QApplication::processEvents();
    return view.widgetOf(*form.find(name))->x();
  };
  const int wide = view.widgetOf(*form.find("chk23"))->sizeHint().width();

  view.resize(3 * wide + 120, 400);
  EXPECT_EQ(columnOf("chk0"), columnOf("chk7"));
  EXPECT_LT(columnOf("chk7"), columnOf("chk8"));
  EXPECT_LT(columnOf("chk15"), columnOf("chk16"));
  EXPECT_EQ(columnOf("chk16"), columnOf("chk23"));

  view.resize(view.minimumSizeHint().width(), 400);
  EXPECT_EQ(columnOf("chk0"), columnOf("chk23"));
  // What no longer fits is reached by scrolling, and the focus scrolls there.
  QWidget* last = view.widgetOf(*form.find("chk23"));
  EXPECT_TRUE(last->visibleRegion().isEmpty());
  view.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
  last->setFocus();
  EXPECT_FALSE(last->visibleRegion().isEmpty());

  form.find("chk0")->Visible = false;
  QApplication::processEvents();
  EXPECT_EQ(view.widgetOf(*form.find("chk1"))->y(), 0) << "a hidden control leaves no gap";
}

TEST(Host, TheFormIsAskedOnEveryCloseUntilItAgrees) {
  SampleForm form;
  form.mayGo = false;
  qt::QtHost host;
  host.onShown = [&form](qt::FormView& view) {
    QTimer::singleShot(0, &view, [&form, &view] {
      view.close();
      EXPECT_TRUE(view.isVisible());
      form.mayGo = true;
      form.close();
    });
  };
  host.showModal(form);
  EXPECT_EQ(form.timesAsked, 2);
}

TEST(Host, AFormMayCloseWhileItIsShownAndOpenAnotherFromAHandler) {
  SampleForm outer;
  SampleForm inner;
  qt::QtHost host;
  int shown = 0;
  host.onShown = [&](qt::FormView& view) {
    ++shown;
    if (&view.form() == &inner) {
      EXPECT_NE(view.parentWidget(), nullptr);
      EXPECT_TRUE(view.isModal());
      inner.close();
    } else {
      QTimer::singleShot(0, &view, [&] { outer.cmdAdd.press(); });
    }
  };
  outer.cmdAdd.Click += [&] {
    host.showModal(inner);
    outer.close();
  };
  host.showModal(outer);
  EXPECT_EQ(shown, 2);
}

}  // namespace
}  // namespace korvex::test
