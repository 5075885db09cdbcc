// The hand of a person on a form.
#include "cli/form_driver.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <vector>

#include "cli/failure.h"
#include "cli/secrets.h"
#include "cli/tweak_names.h"
#include "cli/value_text.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using forms::Control;
using forms::Form;

Failure cannotUse(const Control& control, std::string_view why) {
  return {ExitCode::Failed, "control-disabled",
          fmt::format("{} ({}) cannot be used: {}", control.name(), control.accessibleName(), why)};
}

// A control that a person can use now.
Control& usable(const Form& form, std::string_view name) {
  Control* control = form.find(name);
  if (control == nullptr) {
    std::vector<std::string> names;
    for (const Control* each : form.controls()) names.push_back(each->name());
    throw Failure(ExitCode::Usage, "unknown-control",
                  fmt::format("{} has no control '{}'.{}", form.name(), printable(name),
                              suggestion(name, names)));
  }
  if (!control->Visible) throw cannotUse(*control, "it is hidden.");
  if (!control->Enabled) {
    // The tool tip of a tweak that the machine cannot have is the reason.
    const std::string& reason = control->ToolTipText;
    throw cannotUse(*control, control->kind() == forms::ControlKind::CommandButton || reason.empty()
                                  ? "it is disabled."
                                  : "it is disabled: " + reason);
  }
  return *control;
}

template <typename T>
T& usableAs(const Form& form, std::string_view name, std::string_view what) {
  Control& control = usable(form, name);
  if (auto* result = dynamic_cast<T*>(&control)) return *result;
  throw Failure(ExitCode::Usage, "wrong-control",
                fmt::format("{} is a {}, not {}.", control.name(), kindName(control.kind()), what));
}

[[noreturn]] void noItem(const Control& control, const std::string& item,
                         const std::vector<std::string>& items) {
  throw Failure(ExitCode::Usage, "unknown-item",
                fmt::format("{} has no item '{}'.{}", control.name(), printable(item),
                            suggestion(item, items)));
}

// Exactly, else without regard to case; -1 for neither.
int indexOf(const std::vector<std::string>& items, const std::string& item) {
  auto found = std::find(items.begin(), items.end(), item);
  if (found == items.end()) {
    found = std::find_if(items.begin(), items.end(), [&item](const std::string& candidate) {
      return platform::sameName(candidate, item);
    });
  }
  return found == items.end() ? -1 : static_cast<int>(found - items.begin());
}

// Also by its beginning, up to a blank: items may go on with what they hold. -1 where none is
// meant, or more than one.
int itemMeant(const std::vector<std::string>& items, const std::string& typed) {
  const int whole = indexOf(items, typed);
  if (whole >= 0 || typed.empty()) return whole;
  int found = -1;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const std::string& item = items[i];
    if (item.size() <= typed.size() || item[typed.size()] != ' ') continue;
    if (!platform::sameName(std::string_view(item).substr(0, typed.size()), typed)) continue;
    if (found >= 0) return -1;
    found = static_cast<int>(i);
  }
  return found;
}

void selectTab(forms::TabStrip& strip, const std::string& item) {
  std::vector<std::string> captions;
  std::vector<std::string> keys;
  for (const forms::Tab& tab : strip.tabs()) {
    captions.push_back(tab.caption);
    keys.push_back(tab.key);
  }
  int index = indexOf(captions, item);
  if (index < 0) index = indexOf(keys, item);
  if (index < 0) noItem(strip, item, captions);
  strip.SelectedItem = index + 1;
}

void select(const Form& form, const Step& step) {
  Control& control = usable(form, step.control);
  if (auto* strip = dynamic_cast<forms::TabStrip*>(&control)) {
    selectTab(*strip, step.text);
  } else if (auto* list = dynamic_cast<forms::ListControl*>(&control)) {
    const int index = itemMeant(list->items(), step.text);
    if (index < 0) noItem(control, step.text, list->items());
    list->ListIndex = index;
  } else {
    throw Failure(ExitCode::Usage, "wrong-control",
                  fmt::format("{} is a {}: it has no items to select.", control.name(),
                              kindName(control.kind())));
  }
}

void checkItem(forms::CheckList& list, const Step& step) {
  if (step.text.empty()) {
    throw Failure(ExitCode::Usage, "wrong-control",
                  fmt::format("{} is a list: write {}:ITEM.", list.name(), step.typed));
  }
  const int index = itemMeant(list.items(), step.text);
  if (index < 0) noItem(list, step.text, list.items());
  if (!list.isCheckable(index)) {
    throw cannotUse(list, fmt::format("'{}' cannot be checked.",
                                      printable(list.items()[static_cast<std::size_t>(index)])));
  }
  list.setChecked(index, step.kind == Step::Kind::Check);
}

void selectFurther(forms::MultiList& list, const Step& step) {
  const int index = itemMeant(list.items(), step.text);
  if (index < 0) noItem(list, step.text, list.items());
  list.setSelected(index, step.kind == Step::Kind::Check);
}

void check(Form& form, const Step& step) {
  Control& control = usable(form, step.control);
  if (auto* list = dynamic_cast<forms::MultiList*>(&control)) return selectFurther(*list, step);
  if (auto* list = dynamic_cast<forms::CheckList*>(&control)) return checkItem(*list, step);
  if (!step.text.empty()) {
    throw Failure(ExitCode::Usage, "wrong-control",
                  fmt::format("{} is a {}: it has no items to check.", control.name(),
                              kindName(control.kind())));
  }
  // An option button is checked by a click too, and unchecked by none.
  if (step.kind == Step::Kind::Check) {
    if (auto* option = dynamic_cast<forms::OptionButton*>(&control)) {
      option->Value = true;
      return;
    }
  }
  setCheckBox(form, step.control,
              step.kind == Step::Kind::Check ? forms::vbChecked : forms::vbUnchecked);
}

// Arguments can be read by every user of the system.
void refusePassword(const Form& form, std::string_view name) {
  const auto* box = form.find<forms::TextBox>(name);
  if (box == nullptr || !box->options().password) return;
  throw Failure(ExitCode::Usage, "password-in-argument",
                fmt::format("{} takes a password, which must not stand on the command line: write "
                            "secret={}:FD and give it on that file descriptor.",
                            box->name(), box->name()));
}

int descriptorIn(const Step& step) {
  int descriptor = -1;
  const char* const end = step.text.data() + step.text.size();
  const auto parsed = std::from_chars(step.text.data(), end, descriptor);
  if (parsed.ec == std::errc{} && parsed.ptr == end && descriptor >= 0) return descriptor;
  throw Failure(ExitCode::Usage, "bad-step",
                fmt::format("'{}': write secret=CONTROL:FD with the number of a file descriptor.",
                            printable(step.typed)));
}

}  // namespace

void setCheckBox(Form& form, std::string_view control, int value) {
  usableAs<forms::CheckBox>(form, control, "a check box").Value = value;
}

void fillField(Form& form, std::string_view control, const std::string& text) {
  auto* list = dynamic_cast<forms::ComboBox*>(&usable(form, control));
  if (list == nullptr || list->style() == forms::ComboBox::Style::DropDown) {
    return typeText(form, control, text);
  }
  select(form, {Step::Kind::Select, std::string(control), text, ""});
}

void typeText(Form& form, std::string_view control, const std::string& text) {
  if (auto* combo = dynamic_cast<forms::ComboBox*>(&usable(form, control))) {
    if (combo->style() != forms::ComboBox::Style::DropDown) {
      throw cannotUse(*combo, "it takes no text, only one of its items (select=).");
    }
    combo->Text = text;
    return;
  }
  auto& box = usableAs<forms::TextBox>(form, control, "a text box");
  const forms::TextBoxOptions& options = box.options();
  if (options.readOnly) throw cannotUse(box, "it only shows its text.");
  if (!options.multiLine && text.find_first_of("\r\n") != std::string::npos) {
    throw cannotUse(box, "it holds a single line.");
  }
  if (options.maxLength > 0 &&
      platform::characterCount(text) > static_cast<std::size_t>(options.maxLength)) {
    throw cannotUse(box, fmt::format("'{}' is longer than the {} characters it takes.",
                                     printable(text), options.maxLength));
  }
  box.Text = text;
  box.LostFocus.raise();
}

void perform(Form& form, const Step& step) {
  switch (step.kind) {
    case Step::Kind::Check:
    case Step::Kind::Uncheck:
      return check(form, step);
    case Step::Kind::Type:
      refusePassword(form, step.control);
      return typeText(form, step.control, step.text);
    case Step::Kind::Secret:
      return typeText(form, step.control, readSecret(descriptorIn(step)));
    case Step::Kind::Select:
      return select(form, step);
    case Step::Kind::Press:
      usableAs<forms::CommandButton>(form, step.control, "a button").press();
  }
}

}  // namespace korvex::cli
