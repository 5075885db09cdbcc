// Every tweak as Markdown.
#include "cli/manual.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "cli/tweak_json.h"
#include "cli/tweak_places.h"
#include "engine/whats_this.h"
#include "forms/control.h"
#include "platform/text/reg_names.h"

namespace korvex::cli {
namespace {

using engine::Families;
using engine::Tweak;

constexpr std::string_view kHead = R"(# The tweaks

Made from the rows of the catalogue by `korvex list --manual`; do not edit.

Each tweak has its name for the command line, its caption, and what is written: where its box is
checked, where it is unchecked, and by the Windows default. "No value" means that the value is
deleted. Where several things are written, or what is written depends on the machine, `korvex show`
tells them.
)";

struct Family {
  Families bit;
  std::string_view name;
};
constexpr std::array kFamilies{Family{engine::kWin95, "95"}, Family{engine::kWin98, "98"},
                               Family{engine::kWinMe, "Me"}, Family{engine::kNT4, "NT 4"},
                               Family{engine::kWin2000, "2000"}};

std::string familyNames(Families families) {
  std::vector<std::string_view> names;
  for (const Family& family : kFamilies) {
    if ((families & family.bit) != 0) names.push_back(family.name);
  }
  return fmt::format("{}", fmt::join(names, ", "));
}

std::string windowsText(const Tweak& tweak) {
  std::string text =
      tweak.families == engine::kEvery ? "every Windows" : "Windows " + familyNames(tweak.families);
  const Families update = tweak.families & tweak.needsDesktopUpdate;
  if (update != 0) {
    text +=
        fmt::format(" ({} with the desktop update of Internet Explorer 4)", familyNames(update));
  }
  if (tweak.lacks != nullptr) text += ", where the machine has what it needs";
  return text;
}

// What is no Markdown: captions and data hold '*', '_' and '<'.
std::string plain(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (std::string_view("\\`*_{}[]<>#|").find(c) != std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

std::string writesText(const Tweak& tweak) {
  const engine::WrittenTexts writes = engine::writtenTexts(tweak);
  std::vector<std::string> parts;
  if (!writes.checked.empty()) parts.push_back("checked: " + writes.checked);
  if (!writes.unchecked.empty()) parts.push_back("unchecked: " + writes.unchecked);
  if (!writes.byDefault.empty()) parts.push_back("default: " + writes.byDefault);
  if (isTextRow(tweak)) parts.insert(parts.begin(), "the text typed");
  if (parts.empty() && !tweak.writes.empty()) {
    return plain(tweak.writes.substr(0, tweak.writes.size() - 1));  // a full stop follows
  }
  if (parts.empty()) return "`korvex show` tells what it writes";
  return plain(fmt::format("{}", fmt::join(parts, "; ")));
}

std::string entry(const Tweak& tweak) {
  std::string text =
      fmt::format("- **`{}`** {}\n", tweak.property, plain(forms::plainCaption(tweak.caption)));
  if (!tweak.toolTip.empty()) text += fmt::format("  ({}).\n", plain(tweak.toolTip));
  if (!tweak.key.empty() && engine::tellsOfTheValue(tweak)) {
    text += fmt::format("  `{}\\{}`, value `{}`{}:\n", platform::rootName(tweak.root), tweak.key,
                        tweak.value.empty() ? "(Default)" : tweak.value,
                        tweak.adapt != nullptr ? " on most machines" : "");
  }
  return text + fmt::format("  {}. On {}.{}\n", writesText(tweak), windowsText(tweak),
                            tweak.reboot ? " Takes effect after a restart." : "");
}

// The frames of a place, in the order of the rows; the rows without one come last.
std::vector<std::string_view> groupsOf(const TweakPlace& place) {
  std::vector<std::string_view> groups;
  for (const Tweak* tweak : place.tweaks) {
    const bool known = std::find(groups.begin(), groups.end(), tweak->group) != groups.end();
    if (!known && !tweak->group.empty()) groups.push_back(tweak->group);
  }
  groups.emplace_back();
  return groups;
}

}  // namespace

std::string manualText() {
  std::string text(kHead);
  for (const TweakPlace& place : tweakPlaces()) {
    text += fmt::format("\n## {}\n", plain(place.title));
    for (const std::string_view group : groupsOf(place)) {
      std::string entries;
      for (const Tweak* tweak : place.tweaks) {
        if (tweak->group == group) entries += entry(*tweak);
      }
      if (entries.empty()) continue;
      if (!group.empty()) text += fmt::format("\n### {}\n", plain(forms::plainCaption(group)));
      text += "\n" + entries;
    }
  }
  return text;
}

}  // namespace korvex::cli
