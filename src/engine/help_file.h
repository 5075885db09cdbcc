// Where the main Windows help files stand, and the names under which disabled ones are kept.
#pragma once

#include <array>
#include <string>

#include "foundation/session.h"

namespace korvex::engine {

struct HelpFilePaths {
  std::string help;
  std::string kept;
};

std::array<HelpFilePaths, 2> helpFiles(const foundation::Session& session);

}  // namespace korvex::engine
