// Where a person finds a tweak: a page of the main window, or a dialog that continues one.
#pragma once

#include <string>
#include <vector>

#include "engine/tweak.h"

namespace korvex::cli {

struct TweakPlace {
  std::string title;  // "Security", "Security: Further restrictions (frmMoreSecurity)"
  std::vector<const engine::Tweak*> tweaks;
};

// All tweaks by place: the pages in the order of their tabs, each followed by its dialogs.
std::vector<TweakPlace> tweakPlaces();

// The tweaks that --page means: a page with the dialogs that continue it ("Win Tweaks", also
// "wintweaks"), or one dialog ("frmMoreSecurity", also without "frm"). Throws Failure (Usage).
std::vector<TweakPlace> placesNamed(const std::string& typed);

// The words that --page takes, one for each page and dialog that has tweaks.
std::vector<std::string> placeNames();

}  // namespace korvex::cli
