// One form for the paths that people and registries write in several.
#pragma once

#include <string>
#include <string_view>

#include "foundation/trace.h"

namespace korvex::foundation {

// Blanks and quotes around a path go, '/' becomes '\', and doubled backslashes one (but the two
// that begin a server's name). A text that holds a Chr(0) is no path: it comes back as it is.
std::string P_FixPathGen(TraceText& trace, std::string_view sPath);

}  // namespace korvex::foundation
