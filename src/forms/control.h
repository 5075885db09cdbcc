// What every control has. The kinds stand in controls.h.
#pragma once

#include <string>
#include <string_view>

#include "forms/event.h"

namespace korvex::forms {

class Form;

enum class ControlKind {
  CheckBox,
  OptionButton,
  TextBox,
  ListBox,
  ComboBox,
  CommandButton,
  Label,
  TabStrip,
  Frame,
};

// The word for a kind in lists for people and scripts: "CheckBox".
std::string_view kindName(ControlKind kind);

// The caption as a screen reader says it: '&' mnemonics and trailing "..." or ':' dropped.
std::string plainCaption(std::string_view caption);
// The other way round: a text as a caption that shows it, without a mnemonic.
std::string captionOf(std::string_view text);

class Control {
 public:
  // Adds itself to the form, which must outlive it: a control is a member of its form, or owned by
  // it (Form::own).
  Control(Form& form, ControlKind kind, std::string name, std::string caption);
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  Form& form() const { return form_; }
  ControlKind kind() const { return kind_; }
  const std::string& name() const { return name_; }
  // What a screen reader says: the name given, else the plain caption.
  std::string accessibleName() const;
  // What a person reads as the control's state: "checked", a text, the selected item.
  virtual std::string stateText() const = 0;

  Property<std::string> Caption;  // '&' marks the mnemonic, "&&" is an ampersand
  Property<bool> Enabled{true};
  Property<bool> Visible{true};
  Property<std::string> ToolTipText;
  Property<std::string> WhatsThis;
  Property<std::string> AccessibleName;

 private:
  Form& form_;
  ControlKind kind_;
  std::string name_;
};

}  // namespace korvex::forms
