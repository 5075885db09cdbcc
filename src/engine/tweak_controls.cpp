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

}  // namespace

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
  if (isField(tweak)) {
    makeField(tweak, group);
  } else {
    group.parts.push_back(Layout::of(
        form_.own<forms::CheckBox>(std::string(tweak.control), std::string(tweak.caption))));
  }
  forms::Control* control = form_.find(tweak.control);
  control->ToolTipText = std::string(tweak.toolTip);
  control->WhatsThis = whatsThis(tweak);
  controls_.push_back({&tweak, control});
}

forms::Control& TweakControls::ownField(const Tweak& tweak) {
  if (tweak.shape == ControlShape::ComboBox) {
    auto& list = form_.own<forms::ComboBox>(std::string(tweak.control));
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
}

Layout TweakControls::layoutOf(Group& group) {
  if (!group.fields.empty()) {
    group.parts.push_back(Layout::row({Layout::grid(2, std::move(group.fields)), Layout::space()}));
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
