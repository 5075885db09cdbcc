// The page of the manual that tells every tweak, made from the rows: docs/tweaks.md.
#pragma once

#include <string>

namespace korvex::cli {

std::string manualText();

}  // namespace korvex::cli
