// The visual check: silent on good windows, and not on bad ones.
#include "form_check.h"

#include <gtest/gtest.h>

#include <QApplication>

#include "keep_look.h"
#include "qt/style.h"
#include "sample_form.h"

namespace korvex::test {
namespace {

using Part = forms::Layout;

std::string joined(const std::vector<std::string>& complaints) {
  std::string text;
  for (const std::string& complaint : complaints) text += complaint + "\n";
  return text;
}

struct FormCheck : ::testing::Test {
  SampleForm form;
  qt::FormView view{form};

  std::string complaints() { return joined(checkForm(view)); }
  QWidget& widget(const forms::Control& control) { return *view.widgetOf(control); }
  void SetUp() override {
    view.showInPlace();
    QApplication::processEvents();
  }
};

TEST_F(FormCheck, NothingIsWrongWithTheSample) { EXPECT_EQ(complaints(), ""); }

TEST(FormCheckLooks, NothingIsWrongInTheClassicLookOrWithALargeFont) {
  const KeepLook kept;
  for (const int points : {QApplication::font().pointSize(), 18}) {
    KeepLook::setPointSize(points);
    qt::useLook(qt::Look::Classic);
    SampleForm form;
    qt::FormView view(form);
    view.showInPlace();
    EXPECT_EQ(joined(checkForm(view)), "") << points;
  }
}

TEST_F(FormCheck, CutTextIsSeen) {
  widget(form.chkThree).setFixedWidth(40);
  widget(form.lblNote).setFixedHeight(8);
  widget(form.cmdRemove).setFixedWidth(30);
  const std::string text = complaints();
  for (const char* name : {"chkThree", "lblNote", "cmdRemove"}) {
    EXPECT_NE(text.find(std::string(name) + " is cut off"), std::string::npos) << text;
  }
}

TEST_F(FormCheck, OverlapAndControlsOutsideTheWindowAreSeen) {
  widget(form.chkTwo).setGeometry(widget(form.chkOne).geometry());
  widget(form.cmdOk).move(5000, 10);
  const std::string text = complaints();
  EXPECT_NE(text.find("chkOne and chkTwo overlap"), std::string::npos) << text;
  EXPECT_NE(text.find("cmdOk leaves its window"), std::string::npos) << text;
}

TEST_F(FormCheck, AMnemonicGivenTwiceOnAPageOrToAButtonOutsideIsSeen) {
  form.chkTwo.Caption = "An&other switch";
  form.cmdCancel.Caption = "Ca&ncel";  // the name's, on the other page
  const std::string text = complaints();
  EXPECT_NE(text.find("(page First): chkOne and chkTwo both have Alt+O"), std::string::npos);
  EXPECT_NE(text.find("(page Second): lblName and cmdCancel both have Alt+N"), std::string::npos);
}

TEST_F(FormCheck, ATabKeyThatJumpsAboutIsSeen) {
  QWidget::setTabOrder(&widget(form.chkFour), &widget(form.chkOne));
  EXPECT_NE(complaints().find("the Tab key goes back from"), std::string::npos);
}

TEST_F(FormCheck, WhatNobodySeesIsSeen) {
  widget(form.chkOne).hide();
  EXPECT_NE(complaints().find("chkOne cannot be seen"), std::string::npos);
}

TEST(FormCheckForms, AControlLeftOutOfTheLayoutOrWithoutANameIsSeen) {
  forms::Form form("frm", "");
  forms::TextBox nameless(form, "txtNameless");
  forms::CheckBox forgotten(form, "chkForgotten", "Forgotten");
  form.layout = Part::column({Part::of(nameless)});
  qt::FormView view(form);
  view.showInPlace();
  EXPECT_EQ(joined(checkForm(view)),
            "frm: chkForgotten is not in the layout\nfrm: txtNameless has no accessible name\n");
}

TEST(FormCheckForms, APageThatNeedsAWiderScreenIsSeen) {
  forms::Form form("frm", "");
  std::vector<Part> fields;
  for (int i = 0; i < 12; ++i) {
    auto& field = form.own<forms::TextBox>("txt" + std::to_string(i));
    field.AccessibleName = "Field";
    fields.push_back(Part::of(field));
  }
  form.layout = Part::row(std::move(fields));
  qt::FormView view(form);
  view.showInPlace();
  EXPECT_NE(joined(checkForm(view)).find("stands on a page wider than its window"),
            std::string::npos);
}

}  // namespace
}  // namespace korvex::test
