// The what's-this text of a tweak: which value it is, and what is written there.
#pragma once

#include <string>

#include "engine/tweak.h"

namespace korvex::main_window {

std::string whatsThis(const engine::Tweak& tweak);

}  // namespace korvex::main_window
