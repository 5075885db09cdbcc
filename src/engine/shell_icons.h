// Whether a machine has what the icon tweaks change.
#pragma once

#include <string_view>

#include "engine/tweak.h"
#include "foundation/session.h"

namespace korvex::engine {

std::string_view needsBitmapClass(const Tweak& tweak, foundation::Session& session);
// Internet Explorer 5 with a picture other than its own, now or before the box was checked.
std::string_view needsToolbarBitmap(const Tweak& tweak, foundation::Session& session);

// The class of shortcuts, which every Windows registers.
std::string_view needsShortcutClass(const Tweak& tweak, foundation::Session& session);

}  // namespace korvex::engine
