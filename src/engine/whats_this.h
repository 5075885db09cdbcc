// The what's-this text of a tweak: which value it is, and what is written there.
#pragma once

#include <string>

#include "engine/tweak.h"

namespace korvex::engine {

std::string whatsThis(const Tweak& tweak);

}  // namespace korvex::engine
