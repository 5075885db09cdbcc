// Whether a machine has the folder that a tweak would take from My Computer or Control Panel.
#pragma once

#include <string_view>

#include "engine/tweak.h"
#include "foundation/session.h"

namespace korvex::engine {

std::string_view needsNameSpaceFolder(const Tweak& tweak, foundation::Session& session);

}  // namespace korvex::engine
