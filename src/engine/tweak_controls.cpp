// From rows to controls.
#include "engine/tweak_controls.h"

#include <algorithm>
#include <string>
#include <utility>

#include "engine/catalogue.h"
#include "engine/reg_worker.h"
#include "engine/whats_this.h"

namespace korvex::engine {

using forms::Layout;

namespace {

constexpr int kDelayDigits = 10;  // what a 32-bit number needs
constexpr int kLongestText = 255;

}  // namespace

TweakControls::TweakControls(forms::Form& form) : form_(form) {
  for (const Tweak* tweak : allTweaks()) {
    if (tweak->form != form.name() || tweak->shape == ControlShape::None) continue;
    auto group = std::ranges::find_if(groups_, [tweak](const Group& candidate) {
      return candidate.page == tweak->page && candidate.title == tweak->group;
    });
    if (group == groups_.end()) group = groups_.insert(group, {tweak->page, tweak->group, {}});
    group->parts.push_back(makeControl(*tweak));
  }
}

Layout TweakControls::makeControl(const Tweak& tweak) {
  Layout part = tweak.shape == ControlShape::TextBox
                    ? makeField(tweak)
                    : Layout::of(form_.own<forms::CheckBox>(std::string(tweak.control),
                                                            std::string(tweak.caption)));
  forms::Control* control = form_.find(tweak.control);
  control->ToolTipText = std::string(tweak.toolTip);
  control->WhatsThis = whatsThis(tweak);
  controls_.push_back({&tweak, control});
  return part;
}

Layout TweakControls::makeField(const Tweak& tweak) {
  const bool isNumber = tweak.special == &RegWorker::P_rwStartMenuSpeed;
  auto& text = form_.own<forms::TextBox>(
      std::string(tweak.control),
      forms::TextBoxOptions{.maxLength = isNumber ? kDelayDigits : kLongestText,
                            .widthInCharacters = isNumber ? kDelayDigits : 2 * kDelayDigits});
  auto& label =
      form_.own<forms::Label>("lbl" + std::string(tweak.buddy), std::string(tweak.caption), &text);
  label.ToolTipText = std::string(tweak.toolTip);
  return Layout::row({Layout::of(label), Layout::of(text), Layout::space()});
}

std::vector<Layout> TweakControls::groups(Page page) {
  std::vector<Layout> result;
  for (Group& group : groups_) {
    if (group.page != page) continue;
    result.push_back(Layout::group(std::string(group.title), std::move(group.parts)));
  }
  return result;
}

std::vector<Layout> TweakControls::groups() {
  std::vector<Layout> result;
  for (Group& group : groups_) {
    result.push_back(Layout::group(std::string(group.title), std::move(group.parts)));
  }
  return result;
}

}  // namespace korvex::engine
