// From rows to controls.
#include "engine/tweak_controls.h"

#include <algorithm>
#include <string>
#include <utility>

#include "engine/catalogue.h"
#include "engine/whats_this.h"

namespace korvex::engine {

using forms::Layout;

namespace {

constexpr int kDigits = 10;  // what a 32-bit number needs
constexpr int kLongestText = 255;
constexpr std::size_t kLongColumn = 20;  // labels and fields

}  // namespace

std::string optionName(const Tweak& pair, int index) {
  return std::string(pair.control) + std::to_string(index);
}

std::optional<int> shownState(const forms::Form& form, const Tweak& row) {
  if (row.shape == ControlShape::OptionPair) {
    const auto* first = form.find<forms::OptionButton>(optionName(row, 0));
    if (first == nullptr) return std::nullopt;
    return first->Value ? forms::vbChecked : forms::vbUnchecked;
  }
  const auto* box = form.find<forms::CheckBox>(row.control);
  return box == nullptr ? std::nullopt : std::optional<int>(box->Value.get());
}

bool showState(const forms::Form& form, const Tweak& row, int value) {
  if (row.shape == ControlShape::OptionPair) {
    auto* button = form.find<forms::OptionButton>(optionName(row, value == 1 ? 0 : 1));
    if (button != nullptr) button->Value = true;
    return button != nullptr;
  }
  auto* box = form.find<forms::CheckBox>(row.control);
  if (box != nullptr) box->Value = value;
  return box != nullptr;
}

TweakControls::TweakControls(forms::Form& form) : form_(form) {
  for (const Tweak* tweak : allTweaks()) {
    if (tweak->form != form.name() || tweak->shape == ControlShape::None) continue;
    auto group = std::ranges::find_if(groups_, [tweak](const Group& candidate) {
      return candidate.page == tweak->page && candidate.title == tweak->group;
    });
    if (group == groups_.end()) group = groups_.insert(group, {tweak->page, tweak->group, {}, {}});
    makeControl(*tweak, *group);
  }
}

void TweakControls::makeControl(const Tweak& tweak, Group& group) {
  if (isField(tweak)) return makeField(tweak, group);
  if (tweak.shape == ControlShape::OptionPair) return makePair(tweak, group);
  makeBox(tweak, group);
}

void TweakControls::add(const Tweak& tweak, forms::Control& control) {
  control.ToolTipText = std::string(tweak.toolTip);
  control.WhatsThis = whatsThis(tweak);
  controls_.push_back({&tweak, &control});
}

void TweakControls::makeBox(const Tweak& tweak, Group& group) {
  auto& box = form_.own<forms::CheckBox>(std::string(tweak.control), std::string(tweak.caption));
  group.parts.push_back(Layout::of(box));
  add(tweak, box);
}

void TweakControls::makePair(const Tweak& tweak, Group& group) {
  for (const int index : {0, 1}) {
    auto& button = form_.own<forms::OptionButton>(
        optionName(tweak, index), std::string(index == 0 ? tweak.caption : tweak.otherCaption),
        std::string(tweak.control));
    group.parts.push_back(Layout::of(button));
    add(tweak, button);
  }
}

forms::Control& TweakControls::ownField(const Tweak& tweak) {
  if (tweak.shape == ControlShape::ComboBox) {
    using Style = forms::ComboBox::Style;
    auto& list = form_.own<forms::ComboBox>(std::string(tweak.control),
                                            tweak.freeText ? Style::DropDown : Style::DropDownList);
    for (const std::string_view choice : tweak.choices) list.AddItem(std::string(choice));
    return list;
  }
  const int digits = std::max(kDigits, static_cast<int>(tweak.orWord.size()));
  return form_.own<forms::TextBox>(
      std::string(tweak.control),
      forms::TextBoxOptions{.maxLength = tweak.digitsOnly ? digits : kLongestText,
                            .widthInCharacters = tweak.digitsOnly ? digits : 2 * kDigits});
}

void TweakControls::makeField(const Tweak& tweak, Group& group) {
  forms::Control& field = ownField(tweak);
  auto& label =
      form_.own<forms::Label>("lbl" + std::string(tweak.buddy), std::string(tweak.caption), &field);
  label.ToolTipText = std::string(tweak.toolTip);
  group.fields.push_back(Layout::of(label));
  group.fields.push_back(Layout::of(field));
  add(tweak, field);
}

Layout TweakControls::layoutOf(Group& group) {
  if (!group.fields.empty()) {
    // Labels and fields; many of them in two columns, to fit on a small screen.
    const int columns = group.fields.size() > kLongColumn ? 4 : 2;
    group.parts.push_back(
        Layout::row({Layout::grid(columns, std::move(group.fields)), Layout::space()}));
  }
  return Layout::group(std::string(group.title), std::move(group.parts));
}

std::vector<Layout> TweakControls::groups(Page page) {
  std::vector<Layout> result;
  for (Group& group : groups_) {
    if (group.page == page) result.push_back(layoutOf(group));
  }
  return result;
}

std::vector<Layout> TweakControls::groups() {
  std::vector<Layout> result;
  for (Group& group : groups_) result.push_back(layoutOf(group));
  return result;
}

}  // namespace korvex::engine
