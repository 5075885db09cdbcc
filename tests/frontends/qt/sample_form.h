// Forms for the window's tests.
#pragma once

#include <string>
#include <vector>

#include "forms/form.h"

namespace korvex::test {

// Every kind of control, on two pages, with a default and a cancel button.
class SampleForm : public forms::Form {
 public:
  using Part = forms::Layout;

  SampleForm() : Form("frmSample", "Sample") {
    for (const char* item : {"Alpha", "Beta", "Gamma"}) {
      lstItems.AddItem(item);
      cboFixed.AddItem(item);
      cboFree.AddItem(item);
    }
    lblNote.Caption =
        "This note is long enough to need more than one line in a window of the usual width, so "
        "that it has to wrap.";
    optTwo.Value = true;
    const auto of = [](forms::Control& control) { return Part::of(control); };
    const Part first = Part::column(
        {Part::group("Switches", {Part::flow({of(chkOne), of(chkTwo), of(chkThree), of(chkFour)})}),
         Part::group("Choices", {Part::row({of(optOne), of(optTwo)})}), of(lblNote),
         Part::space()});
    const Part second =
        Part::column({Part::grid(2, {of(lblName), of(txtName), of(lblSecret), of(txtSecret),
                                     of(lblFixed), of(cboFixed), of(lblFree), of(cboFree)}),
                      Part::row({Part::column({of(lblItems), of(lstItems)}),
                                 Part::column({of(cmdAdd), of(cmdRemove)})}),
                      of(lblText), of(txtText)});
    layout = Part::column({Part::pages(tabPages, {first, second}),
                           Part::row({Part::space(), of(cmdOk), of(cmdCancel)})});
  }

  bool QueryUnload() override {
    ++timesAsked;
    return mayGo;
  }

  int timesAsked = 0;
  bool mayGo = true;

  forms::TabStrip tabPages{
      *this, "tabPages", {{"First", "FIRST", "one"}, {"Second", "2ND", "two"}}};
  forms::CheckBox chkOne{*this, "chkOne", "Switch &one"};
  forms::CheckBox chkTwo{*this, "chkTwo", "Switch &two"};
  forms::CheckBox chkThree{*this, "chkThree", "Switch t&hree, which has a longer text"};
  forms::CheckBox chkFour{*this, "chkFour", "Switch &four"};
  forms::OptionButton optOne{*this, "optOne", "F&irst choice", "choices"};
  forms::OptionButton optTwo{*this, "optTwo", "Secon&d choice", "choices"};
  forms::Label lblNote{*this, "lblNote", ""};
  forms::TextBox txtName{*this, "txtName", {.maxLength = 8, .widthInCharacters = 12}};
  forms::Label lblName{*this, "lblName", "&Name:", &txtName};
  forms::TextBox txtSecret{*this, "txtSecret", {.widthInCharacters = 12, .password = true}};
  forms::Label lblSecret{*this, "lblSecret", "&Password:", &txtSecret};
  forms::ComboBox cboFixed{*this, "cboFixed"};
  forms::Label lblFixed{*this, "lblFixed", "&Kind:", &cboFixed};
  forms::ComboBox cboFree{*this, "cboFree", forms::ComboBox::Style::DropDown};
  forms::Label lblFree{*this, "lblFree", "&Unit:", &cboFree};
  forms::ListBox lstItems{*this, "lstItems", 4};
  forms::Label lblItems{*this, "lblItems", "&Items:", &lstItems};
  forms::CommandButton cmdAdd{*this, "cmdAdd", "&Add"};
  forms::CommandButton cmdRemove{*this, "cmdRemove", "&Remove from the list"};
  forms::TextBox txtText{*this, "txtText", {.maxLength = 10, .multiLine = true}};
  forms::Label lblText{*this, "lblText", "Te&xt:", &txtText};
  forms::CommandButton cmdOk{*this, "cmdOk", "OK", forms::CommandButton::Role::Default};
  forms::CommandButton cmdCancel{*this, "cmdCancel", "Cancel", forms::CommandButton::Role::Cancel};
};

// A window of many check boxes in one flow.
class FlowForm : public forms::Form {
 public:
  explicit FlowForm(int boxes) : Form("frmFlow", "Flow") {
    std::vector<forms::Layout> parts;
    for (int i = 0; i < boxes; ++i) {
      const std::string number = std::to_string(i);
      parts.push_back(
          forms::Layout::of(own<forms::CheckBox>("chk" + number, "Switch number " + number)));
    }
    layout = forms::Layout::column({forms::Layout::flow(std::move(parts))});
  }
};

}  // namespace korvex::test
