// Controls and layout of the pages, from the catalogue's rows.
#include "main_window/main_pages.h"

#include <algorithm>
#include <string>
#include <utility>

#include "engine/catalogue.h"
#include "main_window/whats_this.h"

namespace korvex::main_window {
namespace {

using engine::ControlShape;
using engine::Tweak;
using forms::Layout;

constexpr int kDelayDigits = 10;  // what a 32-bit number needs

}  // namespace

std::vector<forms::Tab> MainPages::tabs() {
  return {
      {"Security", "SECURITY", " Sets security features of Windows "},
      {"Win Tweaks", "WINTWEAKS", " Customize the Windows operating system "},
      {"Windows 9x", "WINDOWS9X", " Customize features specific to Win9x "},
      {"NT4/Win2K", "NT4WIN2K", " Customize features specific to NT4/Win2K "},
      {"MS Office", "MSOFFICE", " Customize MS Office applications "},
      {"Registry", "REGISTRY", " Work with the registry "},
      {"Options", "OPTIONS", " Set user options "},
  };
}

MainPages::MainPages(forms::Form& form) : form_(form) {
  for (const Tweak* tweak : engine::allTweaks()) {
    if (tweak->form != form.name()) continue;
    std::vector<Group>& groups = pages_[static_cast<int>(tweak->page) - 1];
    auto group = std::find_if(groups.begin(), groups.end(), [tweak](const Group& candidate) {
      return candidate.title == tweak->group;
    });
    if (group == groups.end()) group = groups.insert(group, {tweak->group, {}});
    group->parts.push_back(makeControl(*tweak));
  }
}

Layout MainPages::makeControl(const Tweak& tweak) {
  const std::string name(tweak.control);
  const std::string caption(tweak.caption);
  forms::Control* control = nullptr;
  Layout part;
  if (tweak.shape == ControlShape::TextBox) {
    auto& text = form_.own<forms::TextBox>(
        name, forms::TextBoxOptions{.maxLength = kDelayDigits, .widthInCharacters = kDelayDigits});
    const std::string labelName = "lbl" + std::string(tweak.buddy);
    auto& label = form_.own<forms::Label>(labelName, caption, &text);
    label.ToolTipText = std::string(tweak.toolTip);
    part = Layout::row({Layout::of(label), Layout::of(text), Layout::space()});
    control = &text;
  } else {
    control = &form_.own<forms::CheckBox>(name, caption);
    part = Layout::of(*control);
  }
  control->ToolTipText = std::string(tweak.toolTip);
  control->WhatsThis = whatsThis(tweak);
  controls_.push_back({&tweak, control});
  return part;
}

Layout MainPages::page(int index) {
  std::vector<Layout> groups;
  for (Group& group : pages_[index]) {
    groups.push_back(Layout::group(std::string(group.title), std::move(group.parts)));
  }
  if (groups.empty()) {
    const std::string name = "lblEmptyPage" + std::to_string(index + 1);
    groups.push_back(Layout::of(form_.own<forms::Label>(name, "This page has no settings yet.")));
  }
  return Layout::column({Layout::flow(std::move(groups)), Layout::space()});
}

Layout MainPages::layout(forms::TabStrip& tabMain) {
  std::vector<Layout> parts;
  parts.reserve(kPageCount);
  for (int index = 0; index < kPageCount; ++index) parts.push_back(page(index));
  return Layout::pages(tabMain, std::move(parts));
}

}  // namespace korvex::main_window
