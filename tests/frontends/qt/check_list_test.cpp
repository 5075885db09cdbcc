// Checked lists in a window: marks by hand and by code.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QListView>
#include <QStyleOptionViewItem>
#include <QTest>

#include "qt/form_view.h"

namespace korvex::test {
namespace {

class CheckForm : public forms::Form {
 public:
  CheckForm() : Form("frmCheck", "Checked list") {
    for (const char* item : {"one", "two", "three"}) lstTypes.AddItem(item);
    layout = forms::Layout::column({forms::Layout::of(lblTypes), forms::Layout::of(lstTypes)});
  }
  forms::CheckList lstTypes{*this, "lstTypes"};
  forms::Label lblTypes{*this, "lblTypes", "&Types:", &lstTypes};
};

struct CheckedList : ::testing::Test {
  CheckForm form;
  qt::FormView view{form};
  QListView& list = dynamic_cast<QListView&>(*view.widgetOf(form.lstTypes));

  void SetUp() override {
    view.showInPlace();
    view.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
  }
  QModelIndex row(int index) const { return list.model()->index(index, 0); }
  bool showsMark(int index) const {
    return row(index).data(Qt::CheckStateRole).toInt() == Qt::Checked;
  }
  // Where the style draws the mark.
  void clickMark(int index) {
    QStyleOptionViewItem option;
    option.initFrom(&list);
    option.rect = list.visualRect(row(index));
    option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    const QRect mark =
        list.style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, &list);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, mark.center());
  }
};

TEST_F(CheckedList, MarksFollowTheMouseTheSpaceBarAndTheForm) {
  int told = 0;
  form.lstTypes.ItemCheck += [&told] { ++told; };
  clickMark(1);
  EXPECT_TRUE(form.lstTypes.isChecked(1));
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(row(2)).center());
  EXPECT_EQ(form.lstTypes.checkedItems(), std::vector<std::string>{"two"});
  EXPECT_EQ(form.lstTypes.selectedItem(), "three") << "a click on the text selects";
  QTest::keyClick(&list, Qt::Key_Space);
  EXPECT_TRUE(form.lstTypes.isChecked(2));
  QTest::keyClick(&list, Qt::Key_Space);
  EXPECT_FALSE(form.lstTypes.isChecked(2));
  EXPECT_EQ(told, 3);

  form.lstTypes.setAllChecked(true);
  EXPECT_TRUE(showsMark(0) && showsMark(2));
  const QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&list)->child(0);
  EXPECT_TRUE(spoken->state().checked);
  form.lstTypes.RemoveItem(0);
  form.lstTypes.setChecked(0, false);
  EXPECT_FALSE(showsMark(0));
}

TEST_F(CheckedList, AHandlerThatPutsTheMarkBackIsShown) {
  form.lstTypes.ItemCheck += [this] { form.lstTypes.setChecked(0, false); };
  clickMark(0);
  EXPECT_FALSE(showsMark(0));
}

TEST_F(CheckedList, AnItemThatCannotBeCheckedCanBeSelected) {
  form.lstTypes.setCheckable(1, false);
  clickMark(1);
  QTest::keyClick(&list, Qt::Key_Space);
  EXPECT_FALSE(form.lstTypes.isChecked(1));
  EXPECT_EQ(form.lstTypes.selectedItem(), "two");
}

TEST_F(CheckedList, TheFocusAloneSelectsNothing) {
  view.setFocus();
  list.setFocus();
  ASSERT_TRUE(list.hasFocus());
  EXPECT_EQ(form.lstTypes.ListIndex.get(), -1);
  QTest::keyClick(&list, Qt::Key_Space);
  EXPECT_TRUE(form.lstTypes.isChecked(0)) << "of the item that has the focus";
  QTest::keyClick(&list, Qt::Key_Down);
  EXPECT_GE(form.lstTypes.ListIndex.get(), 0);
}

}  // namespace
}  // namespace korvex::test
