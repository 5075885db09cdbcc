// Work that can be cancelled: the person reaches one button, and nothing else.
#include <gtest/gtest.h>

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include "qt/form_view.h"
#include "sample_form.h"

namespace korvex::test {
namespace {

struct Working : ::testing::Test {
  SampleForm form;
  qt::FormView view{form};
  QPushButton& cancel = *view.findChild<QPushButton*>("cancelWork");
  int added = 0;
  int left = 0;

  void SetUp() override {
    form.cmdAdd.Click += [this] { ++added; };
    form.txtName.LostFocus += [this] { ++left; };
    form.tabPages.SelectedItem = 2;
    view.progressDelay = 0;
    view.showInPlace();
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    view.widgetOf(form.txtName)->setFocus();
  }
  // Works on until the end is asked for, at most so many steps; hand runs meanwhile. True where the
  // work came to its end.
  bool work(bool canCancel, const std::function<void()>& hand) {
    form.CanCancel = canCancel;
    form.Busy = true;
    QTimer::singleShot(0, &view, hand);
    bool goOn = true;
    for (int step = 0; goOn && step < 20; ++step) {
      goOn = form.goOn(10);
      QTest::qSleep(10);
    }
    form.Busy = false;
    return goOn;
  }
  void clickInWindow(QWidget& widget) {
    QTest::mouseClick(view.windowHandle(), Qt::LeftButton, {},
                      widget.mapTo(&view, widget.rect().center()));
  }
};

TEST_F(Working, TheButtonAndEscapeEndItWhileTheFocusStays) {
  EXPECT_FALSE(work(true, [this] { clickInWindow(cancel); }));
  EXPECT_FALSE(cancel.isVisible());
  EXPECT_TRUE(work(true, [] {})) << "the end of other work was asked for";
  EXPECT_FALSE(work(true, [this] { QTest::keyClick(view.windowHandle(), Qt::Key_Escape); }));
  EXPECT_EQ(left, 0);
  EXPECT_EQ(QApplication::focusWidget(), view.widgetOf(form.txtName));
}

TEST_F(Working, NothingElseIsReachedMeanwhileNorAfterwards) {
  bool offered = false;
  EXPECT_TRUE(work(true, [&] {
    offered = cancel.isVisible();
    QWidget& add = *view.widgetOf(form.cmdAdd);
    clickInWindow(add);
    QTest::keyClick(&add, Qt::Key_Space);
    QTest::keyClick(view.windowHandle(), Qt::Key_A, Qt::AltModifier);
    QTest::keyClick(view.windowHandle(), Qt::Key_X);
    QTest::keyClick(view.windowHandle(), Qt::Key_Tab);
    view.close();
  }));
  QTest::qWait(150);
  EXPECT_TRUE(offered);
  EXPECT_EQ(added, 0);
  EXPECT_EQ(left, 0);
  EXPECT_EQ(form.txtName.Text.get(), "");
  EXPECT_EQ(form.timesAsked, 0);
  EXPECT_TRUE(view.isVisible());
  clickInWindow(*view.widgetOf(form.cmdAdd));
  EXPECT_EQ(added, 1) << "afterwards all is as before";
}

TEST_F(Working, WithoutCanCancelThereIsNoButtonAndEscapeDoesNothing) {
  bool offered = true;
  EXPECT_TRUE(work(false, [&] { offered = cancel.isVisible(); }));
  EXPECT_FALSE(offered);
  EXPECT_FALSE(form.CancelAsked);
}

}  // namespace
}  // namespace korvex::test
