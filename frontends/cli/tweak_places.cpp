// Grouping the tweaks by page and dialog.
#include "cli/tweak_places.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <functional>
#include <string_view>

#include "cli/failure.h"
#include "cli/tweak_names.h"
#include "cli/value_text.h"
#include "engine/catalogue.h"
#include "main_window/main_pages.h"
#include "platform/text/text.h"
#include "program/program.h"

namespace korvex::cli {
namespace {

using engine::Page;
using engine::Tweak;

constexpr std::string_view kFormPrefix = "frm";

std::string_view mainForm() { return program::Program::forms().front().name; }

std::string titleOf(Page page, const program::FormRow& form) {
  const std::string_view name = engine::pageName(page);
  return form.name == mainForm() ? std::string(name)
                                 : fmt::format("{}: {} ({})", name, form.title, form.name);
}

// Of what page and form select.
std::vector<TweakPlace> places(const std::function<bool(Page, std::string_view)>& wanted) {
  std::vector<TweakPlace> result;
  for (int index = 1; index <= main_window::MainPages::kPageCount; ++index) {
    const Page page{index};
    for (const program::FormRow& form : program::Program::forms()) {
      if (!wanted(page, form.name)) continue;
      TweakPlace place{titleOf(page, form), {}};
      for (const Tweak* tweak : engine::allTweaks()) {
        if (tweak->page == page && tweak->form == form.name) place.tweaks.push_back(tweak);
      }
      if (!place.tweaks.empty()) result.push_back(std::move(place));
    }
  }
  return result;
}

bool isFormNamed(std::string_view form, const std::string& typed) {
  return platform::sameName(form, typed) ||
         platform::sameName(form.substr(kFormPrefix.size()), typed);
}

}  // namespace

std::vector<TweakPlace> tweakPlaces() {
  return places([](Page, std::string_view) { return true; });
}

std::vector<TweakPlace> placesNamed(const std::string& typed) {
  const auto tabs = main_window::MainPages::tabs();
  for (std::size_t i = 0; i < tabs.size(); ++i) {
    if (!platform::sameName(tabs[i].caption, typed) && !platform::sameName(tabs[i].key, typed)) {
      continue;
    }
    const Page wanted{static_cast<int>(i) + 1};
    return places([wanted](Page page, std::string_view) { return page == wanted; });
  }
  std::vector<TweakPlace> found =
      places([&typed](Page, std::string_view form) { return isFormNamed(form, typed); });
  if (!found.empty()) return found;
  const std::vector<std::string> names = placeNames();
  throw Failure(ExitCode::Usage, "unknown-page",
                fmt::format("There is no page '{}'.{} The pages and dialogs are: {}.",
                            printable(typed), suggestion(typed, names), fmt::join(names, ", ")));
}

std::vector<std::string> placeNames() {
  std::vector<std::string> names;
  for (const forms::Tab& tab : main_window::MainPages::tabs()) names.push_back(tab.caption);
  for (const program::FormRow& form : program::Program::forms()) {
    const auto& tweaks = engine::allTweaks();
    const bool any = std::any_of(tweaks.begin(), tweaks.end(),
                                 [&form](const Tweak* tweak) { return tweak->form == form.name; });
    if (any && form.name != mainForm()) names.emplace_back(form.name);
  }
  return names;
}

}  // namespace korvex::cli
