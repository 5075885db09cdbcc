// What special routines do to the shell and its folders.
#include "engine/catalogue/rows.h"

namespace korvex::engine {

std::span<const Tweak> shellRows() { return {}; }

}  // namespace korvex::engine
