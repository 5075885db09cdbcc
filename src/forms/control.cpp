// Names of kinds and what all controls share.
#include "forms/control.h"

#include <utility>

#include "forms/form.h"

namespace korvex::forms {

std::string_view kindName(ControlKind kind) {
  switch (kind) {
    case ControlKind::CheckBox:
      return "CheckBox";
    case ControlKind::OptionButton:
      return "OptionButton";
    case ControlKind::TextBox:
      return "TextBox";
    case ControlKind::ListBox:
      return "ListBox";
    case ControlKind::ComboBox:
      return "ComboBox";
    case ControlKind::CommandButton:
      return "CommandButton";
    case ControlKind::Label:
      return "Label";
    case ControlKind::TabStrip:
      return "TabStrip";
    case ControlKind::Frame:
      return "Frame";
  }
  return "";
}

std::string captionOf(std::string_view text) {
  std::string result;
  for (const char c : text) result += c == '&' ? std::string("&&") : std::string(1, c);
  return result;
}

std::string plainCaption(std::string_view caption) {
  std::string plain;
  for (std::size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == '&') {
      if (i + 1 < caption.size() && caption[i + 1] == '&') plain += caption[i++];
      continue;
    }
    plain += caption[i];
  }
  while (!plain.empty() && (plain.back() == '.' || plain.back() == ':' || plain.back() == ' ')) {
    plain.pop_back();
  }
  return plain;
}

Control::Control(Form& form, ControlKind kind, std::string name, std::string caption)
    : Caption(std::move(caption)), form_(form), kind_(kind), name_(std::move(name)) {
  form_.add(*this);
}

std::string Control::accessibleName() const {
  return AccessibleName->empty() ? plainCaption(Caption.get()) : AccessibleName.get();
}

}  // namespace korvex::forms
