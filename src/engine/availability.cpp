// Which Windows have a tweak.
#include <fmt/format.h>

#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <string>

#include "engine/conditions.h"
#include "engine/readers.h"

namespace korvex::engine {
namespace {

using foundation::Os;

struct FamilyName {
  Families family;
  Os os;
  std::string_view name;
};

constexpr std::array kFamilies{
    FamilyName{kWin95, Os::Windows95, "95"},         FamilyName{kWin98, Os::Windows98, "98"},
    FamilyName{kWinMe, Os::WindowsMe, "Millennium"}, FamilyName{kNT4, Os::WindowsNT4, "NT4"},
    FamilyName{kWin2000, Os::Windows2000, "2000"},
};

std::string sentence(Families families) {
  std::string names;
  const Families last = static_cast<Families>(1 << (std::bit_width(families) - 1));
  for (const FamilyName& family : kFamilies) {
    if ((families & family.family) == 0) continue;
    if (!names.empty()) names += family.family == last ? " and " : ", ";
    names += family.name;
  }
  return fmt::format("This setting exists only on Windows {}.", names);
}

// A reason for each set of Windows: states are views, and the texts must stay.
std::string_view reasonFor(Families families) {
  static const auto sentences = [] {
    std::array<std::string, kEvery + 1> result;
    for (std::size_t set = 1; set < result.size(); ++set) {
      result[set] = sentence(static_cast<Families>(set));
    }
    return result;
  }();
  return sentences[families];
}

// The shell of Internet Explorer 4 and its successors counts from 4.71.
bool hasDesktopUpdate(const foundation::Session& session) {
  const std::string& version = session.g_sShellVersion;
  int major = 0;
  int minor = 0;
  const char* const end = version.data() + version.size();
  const auto dot = std::from_chars(version.data(), end, major).ptr;
  if (dot != end && *dot == '.') std::from_chars(dot + 1, end, minor);
  return major > 4 || (major == 4 && minor >= 71);
}

}  // namespace

Families familyOf(const foundation::Session& session) {
  for (const FamilyName& family : kFamilies) {
    if (family.os == session.g_eOS) return family.family;
  }
  return kEvery;  // not detected: nothing is kept back
}

TweakState availability(const Tweak& tweak, foundation::Session& session) {
  const Families family = familyOf(session);
  if ((tweak.families & family) == 0) {
    return {TweakState::Kind::Unavailable, reasonFor(tweak.families)};
  }
  if ((tweak.needsDesktopUpdate & family) != 0 && family != kEvery && !hasDesktopUpdate(session)) {
    return {TweakState::Kind::Unavailable,
            "Needs the desktop update of Internet Explorer 4 on this Windows."};
  }
  const std::string_view reason = tweak.lacks == nullptr ? "" : tweak.lacks(tweak, session);
  if (!reason.empty()) return {TweakState::Kind::Unavailable, reason};
  return {};
}

}  // namespace korvex::engine
