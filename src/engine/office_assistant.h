// The Office Assistant, put out of the way: its characters lie in a folder below their own, where
// Office does not look for them.
#pragma once

#include <string_view>

#include "engine/tweak.h"
#include "foundation/session.h"

namespace korvex::engine {

// A row's .lacks: Office 97 or 2000, and characters that can be put away or brought back.
std::string_view needsActors(const Tweak& tweak, foundation::Session& session);

}  // namespace korvex::engine
