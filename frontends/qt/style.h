// The look of the windows.
#pragma once

#include <string_view>

namespace korvex::qt {

enum class Look { Desktop, Classic };

// "windows" is the classic look; "" and "desktop" are the desktop's own. False for anything else.
bool lookNamed(std::string_view name, Look& look);

// For the application that runs; Look::Desktop changes nothing.
void useLook(Look look);

}  // namespace korvex::qt
