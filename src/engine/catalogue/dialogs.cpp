// Tweaks of the dialogs that continue a page of the main window.
#include "engine/catalogue/rows.h"

namespace korvex::engine {

std::span<const Tweak> dialogRows() { return {}; }

}  // namespace korvex::engine
