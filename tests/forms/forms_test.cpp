// What forms and their controls promise to those who build on them.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "forms/form.h"
#include "forms/form_book.h"

namespace korvex::forms {
namespace {

TEST(Events, ASubscriptionEndedByAnEarlierHandlerIsNotCalled) {
  Event event;
  int calls = 0;
  Subscription later;
  event += [&later] { later = Subscription(); };
  later = event.subscribe([&calls] { ++calls; });

  event.raise();

  EXPECT_EQ(calls, 0);
}

TEST(Events, AHandlerMayPutThePropertyBack) {
  Property<int> value{1};
  std::vector<int> seen;
  value.changed += [&value] { value = 1; };
  value.changed += [&value, &seen] { seen.push_back(value); };

  value = 2;

  EXPECT_EQ(value.get(), 1);
  EXPECT_EQ(seen.back(), 1);
}

TEST(OptionButtons, OneClearsTheOthersOfItsGroupOnly) {
  Form form("frm", "");
  OptionButton a(form, "a", "", "one");
  OptionButton b(form, "b", "", "one");
  OptionButton other(form, "other", "", "two");
  a.Value = true;
  other.Value = true;

  b.Value = true;

  EXPECT_FALSE(a.Value);
  EXPECT_TRUE(b.Value);
  EXPECT_TRUE(other.Value);
}

struct Lists : ::testing::Test {
  Form form{"frm", ""};
  ListBox list{form, "lst"};
  ComboBox combo{form, "cbo", ComboBox::Style::DropDown};
  ComboBox fixed{form, "cboFixed", ComboBox::Style::DropDownList};
  void SetUp() override {
    for (const char* item : {"one", "two", "three"}) {
      list.AddItem(item);
      combo.AddItem(item);
      fixed.AddItem(item);
    }
  }
};

TEST_F(Lists, EveryHandlerSeesAnIndexThatFitsTheItems) {
  list.ListIndex = 2;
  bool fits = true;
  const auto look = [&] { fits = fits && list.ListIndex < list.ListCount(); };
  list.ListIndex.changed += look;
  list.itemsChanged += look;

  list.RemoveItem(0);
  EXPECT_EQ(list.stateText(), "three");
  list.RemoveItem(1);
  EXPECT_EQ(list.ListIndex.get(), -1);
  list.AddItem("four");
  list.ListIndex = 1;
  list.Clear();

  EXPECT_TRUE(fits);
  EXPECT_EQ(list.stateText(), "");
}

TEST_F(Lists, TypedTextTakesTheSelectionAwaySoThatTheItemCanBePickedAgain) {
  combo.ListIndex = 1;
  combo.Text = "typed";
  EXPECT_EQ(combo.ListIndex.get(), -1);
  EXPECT_EQ(combo.Text.get(), "typed");

  combo.ListIndex = 1;

  EXPECT_EQ(combo.Text.get(), "two");
  EXPECT_EQ(combo.ListIndex.get(), 1);
}

TEST_F(Lists, AComboWithoutFreeTextShowsNothingOnceItIsCleared) {
  fixed.ListIndex = 0;
  fixed.Clear();
  EXPECT_EQ(fixed.stateText(), "");

  combo.Text = "typed";
  combo.Clear();
  EXPECT_EQ(combo.stateText(), "typed");
}

struct Marks : ::testing::Test {
  using Items = std::vector<std::string>;
  Form form{"frm", ""};
  CheckList list{form, "lst"};
  int told = 0;
  void SetUp() override {
    for (const char* item : {"one", "two", "three", "four"}) list.AddItem(item);
    list.ItemCheck += [this] { ++told; };
  }
};

TEST_F(Marks, StayWithTheirItemsWhenOthersGo) {
  list.setChecked(0, true);
  list.setChecked(2, true);
  list.RemoveItem(1);
  list.AddItem("five");
  EXPECT_EQ(list.checkedItems(), (Items{"one", "three"}));
  list.RemoveItem(0);
  EXPECT_EQ(list.stateText(), "1 of 3 checked");
  list.Clear();
  list.AddItem("one");
  EXPECT_FALSE(list.isChecked(0)) << "of an item that has gone";
}

TEST_F(Marks, TellOncePerChangeAndNothingForNone) {
  list.setChecked(1, true);
  list.setChecked(1, true);
  list.setChecked(-1, true);
  list.setChecked(4, true);
  EXPECT_EQ(told, 1);
  list.setAllChecked(true);
  list.setAllChecked(true);
  EXPECT_EQ(told, 2);
}

TEST_F(Marks, AnItemThatCannotBeCheckedIsPassedOver) {
  list.setAllChecked(true);
  list.setCheckable(1, false);
  EXPECT_FALSE(list.isChecked(1));
  list.setChecked(1, true);
  list.setAllChecked(true);
  EXPECT_EQ(list.checkedItems(), (Items{"one", "three", "four"}));
  list.RemoveItem(0);
  EXPECT_FALSE(list.isCheckable(0));
  EXPECT_TRUE(list.isCheckable(1));
}

TEST(LongWork, GoesOnUntilTheEndIsAskedForAndMayBe) {
  Form form("frm", "");
  int shown = 0;
  form.wentOn += [&shown] { ++shown; };
  form.CanCancel = true;
  form.Busy = true;
  EXPECT_TRUE(form.goOn(40));
  form.CancelAsked = true;
  EXPECT_FALSE(form.goOn(40));
  EXPECT_EQ(shown, 2) << "also where the percentage stays";
  form.Busy = false;
  form.Busy = true;
  EXPECT_TRUE(form.goOn(0)) << "asked for the end of other work";
}

TEST(Controls, PlainCaptionIsWhatAScreenReaderSays) {
  EXPECT_EQ(plainCaption("&Save as..."), "Save as");
  EXPECT_EQ(plainCaption("Fish && &chips:"), "Fish & chips");
}

TEST(Controls, ALabelNamesItsBuddyUnlessThatHasAName) {
  Form form("frm", "");
  TextBox unnamed(form, "a");
  TextBox named(form, "b");
  named.AccessibleName = "Second octet";
  const Label one(form, "lbl1", "&Address:", &unnamed);
  const Label two(form, "lbl2", "&Other:", &named);

  EXPECT_EQ(unnamed.accessibleName(), "Address");
  EXPECT_EQ(named.accessibleName(), "Second octet");
}

TEST(Controls, ADisabledOrHiddenButtonCannotBePressed) {
  Form form("frm", "");
  CommandButton button(form, "cmd", "&Go");
  int presses = 0;
  button.Click += [&presses] { ++presses; };
  button.Enabled = false;
  button.press();
  button.Enabled = true;
  button.Visible = false;
  button.press();
  EXPECT_EQ(presses, 0);

  button.Visible = true;
  button.press();
  EXPECT_EQ(presses, 1);
}

TEST(Controls, SeveralItemsOfAListAreSelectedAndTheFirstIsTold) {
  Form form("frm", "");
  MultiList list(form, "lst");
  for (const char* item : {"a", "b", "c", "d"}) list.AddItem(item);
  int changes = 0;
  list.SelectionChange += [&changes] { ++changes; };
  list.setSelected(3, true);
  list.setSelected(1, true);
  list.setSelected(1, true);
  EXPECT_EQ(2, changes);
  EXPECT_EQ(1, list.ListIndex.get());
  EXPECT_EQ((std::vector<int>{1, 3}), list.selectedIndices());
  EXPECT_EQ("2 of 4 selected", list.stateText());
  list.RemoveItem(0);
  EXPECT_EQ((std::vector<std::string>{"b", "d"}), list.selectedItems()) << "others move up";
  list.setSelected(0, false);
  EXPECT_EQ(2, list.ListIndex.get());
  list.ListIndex = 1;
  EXPECT_EQ((std::vector<std::string>{"c"}), list.selectedItems()) << "that one alone";
  list.setSelected(9, true);
  list.Clear();
  EXPECT_TRUE(list.selectedItems().empty());
  EXPECT_EQ(-1, list.ListIndex.get());
}

// Tells on the outside what happens to it.
class LifeForm : public Form {
 public:
  LifeForm(std::vector<std::string>& events, const bool& mayGo)
      : Form("frmLife", ""), events_(events), mayGo_(mayGo) {}
  ~LifeForm() override { events_.push_back("gone"); }
  void Load() override { events_.push_back("Load"); }
  bool QueryUnload() override { return mayGo_; }
  void Unload() override { events_.push_back("Unload"); }

 private:
  std::vector<std::string>& events_;
  const bool& mayGo_;
};

TEST(FormBook, LeadsAFormThroughItsLifeWhenItAgreesToGo) {
  std::vector<std::string> events;
  bool mayGo = false;
  FormBook book;
  book.add("frmLife", [&] { return std::make_unique<LifeForm>(events, mayGo); });

  Form& form = book.load("FRMLIFE");
  EXPECT_EQ(&book.load("frmLife"), &form);
  EXPECT_FALSE(book.unload("frmLife"));
  EXPECT_EQ(book.loaded("frmLife"), &form);
  mayGo = true;
  EXPECT_TRUE(book.unload("frmLife"));

  EXPECT_EQ(events, (std::vector<std::string>{"Load", "Unload", "gone"}));
  EXPECT_EQ(book.loaded("frmLife"), nullptr);
  EXPECT_THROW(book.load("frmOther"), std::out_of_range);
}

}  // namespace
}  // namespace korvex::forms
