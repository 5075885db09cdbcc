// What a person would see wrong in a window.
#pragma once

#include <string>
#include <vector>

#include "qt/form_view.h"

namespace korvex::test {

// Looks at every page of a window that is on the screen and returns a sentence for each fault: text
// that is cut off, controls that overlap, leave the window or cannot be seen, a window too large
// for a small screen, a mnemonic given twice, a control without a name for screen readers, a Tab
// key that jumps about. The page shown before is shown again.
std::vector<std::string> checkForm(qt::FormView& view);

}  // namespace korvex::test
