// What a person would find wrong with a window on the screen.
#pragma once

#include <string>
#include <vector>

#include "qt/form_view.h"

namespace korvex::test {

// One sentence per fault of what is visible now: text cut off, controls that overlap or stand
// outside the window, the same mnemonic twice, controls without a name for screen readers, a tab
// order that jumps about, controls that the layout forgot. A page behind a tab is not visible.
std::vector<std::string> visibleFaults(const qt::FormView& view);

}  // namespace korvex::test
