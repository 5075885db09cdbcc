// Lists with several selected items in a window, and dragging from one to the other.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDropEvent>
#include <QListView>
#include <QMimeData>
#include <QTest>

#include "qt/form_view.h"

namespace korvex::test {
namespace {

class TwoLists : public forms::Form {
 public:
  TwoLists() : Form("frmTwo", "Two lists") {
    for (const char* item : {"one", "two", "three"}) lstLeft.AddItem(item);
    lstRight.takesDropsFrom(lstLeft);
    layout = forms::Layout::column({forms::Layout::of(lblLeft), forms::Layout::of(lstLeft),
                                    forms::Layout::of(lblRight), forms::Layout::of(lstRight)});
  }
  forms::MultiList lstLeft{*this, "lstLeft"};
  forms::Label lblLeft{*this, "lblLeft", "&Left:", &lstLeft};
  forms::MultiList lstRight{*this, "lstRight"};
  forms::Label lblRight{*this, "lblRight", "&Right:", &lstRight};
};

struct SeveralSelected : ::testing::Test {
  TwoLists form;
  qt::FormView view{form};
  QListView& left = dynamic_cast<QListView&>(*view.widgetOf(form.lstLeft));
  QListView& right = dynamic_cast<QListView&>(*view.widgetOf(form.lstRight));

  void SetUp() override {
    view.showInPlace();
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
  }
  void click(int row, Qt::KeyboardModifiers keys = {}) {
    QTest::mouseClick(left.viewport(), Qt::LeftButton, keys,
                      left.visualRect(left.model()->index(row, 0)).center());
  }
};

TEST_F(SeveralSelected, FollowsMouseKeyboardAndForm) {
  click(0);
  click(2, Qt::ControlModifier);
  EXPECT_EQ((std::vector<int>{0, 2}), form.lstLeft.selectedIndices());
  left.setFocus();
  QTest::keyClick(&left, Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ((std::vector<int>{0, 1, 2}), form.lstLeft.selectedIndices());
  form.lstLeft.ListIndex = 1;
  EXPECT_EQ(1, left.selectionModel()->selectedIndexes().size());
  EXPECT_TRUE(left.selectionModel()->isSelected(left.model()->index(1, 0)));
  form.lstLeft.RemoveItem(1);
  EXPECT_TRUE(left.selectionModel()->selectedIndexes().empty());
  EXPECT_EQ(2, left.model()->rowCount());
}

// A drop from outside of a program carries no source: it must not be taken.
TEST_F(SeveralSelected, OnlyTheNamedListCanBeDroppedFrom) {
  EXPECT_TRUE(left.dragEnabled());
  EXPECT_FALSE(left.acceptDrops());
  EXPECT_TRUE(right.acceptDrops());
  EXPECT_FALSE(right.dragEnabled());
  int drops = 0;
  form.lstRight.DragDrop += [&drops] { ++drops; };
  QMimeData data;
  data.setText("from elsewhere");
  QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(right.viewport(), &drop);
  QApplication::processEvents();
  EXPECT_FALSE(drop.isAccepted());
  EXPECT_EQ(0, drops);
}

}  // namespace
}  // namespace korvex::test
