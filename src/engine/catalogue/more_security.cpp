// Restrictions of frmMoreSecurity.
#include "engine/catalogue/rows.h"

namespace korvex::engine {

std::span<const Tweak> moreSecurityRows() { return {}; }

}  // namespace korvex::engine
