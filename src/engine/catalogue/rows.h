// The tables of the catalogue, by area, and what the compiler checks of each.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "engine/modes.h"
#include "engine/same_name.h"
#include "engine/tweak.h"

namespace korvex::engine {

std::span<const Tweak> optionRows();
std::span<const Tweak> desktopRows();       // desktop, Explorer and Start menu
std::span<const Tweak> shellRows();         // what special routines do to the shell and its folders
std::span<const Tweak> securityRows();      // restrictions of the main window
std::span<const Tweak> moreSecurityRows();  // restrictions of frmMoreSecurity
std::span<const Tweak> windows9xRows();     // system and network of Windows 95, 98 and Me
std::span<const Tweak> ntRows();            // system, logon, printing of NT 4 and 2000
// Of the dialogs that continue a page: frmWinTweaksII and so on.
std::span<const Tweak> winTweaksIIRows();
std::span<const Tweak> nt4Win2KContRows();
std::span<const Tweak> ntServerRows();
std::span<const Tweak> drWatRows();
std::span<const Tweak> officeRows();
std::span<const Tweak> jetFormatRows();
std::span<const Tweak> jetEngineRows();

// Keys that several rows share.
constexpr std::string_view kConfigurationKey = "SOFTWARE\\Korvex\\Configuration";
constexpr std::string_view kDesktopKey = "Control Panel\\Desktop";
constexpr std::string_view kPoliciesExplorer =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer";
constexpr std::string_view kPoliciesSystem =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\System";
constexpr std::string_view kPoliciesNetwork =
    "Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Network";

// Without regard to case: the registry and the call by name know none.
constexpr bool propertiesAreUnique(std::span<const Tweak> rows) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (sameName(rows[i].property, rows[j].property)) return false;
    }
  }
  return true;
}

constexpr bool modesAreKnown(std::span<const Tweak> rows) {
  for (const Tweak& row : rows) {
    const std::size_t modes = row.binaryLength == 0 ? kModes.size() : kBinaryModes.size();
    if (row.mode < 0 || static_cast<std::size_t>(row.mode) >= modes) return false;
    if (row.binaryLength != 0 && row.binaryLength != 1 && row.binaryLength != 4) return false;
  }
  return true;
}

}  // namespace korvex::engine
