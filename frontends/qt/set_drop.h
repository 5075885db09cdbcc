// Saved sets dropped on a window.
#pragma once

#include <functional>
#include <string>

namespace korvex::qt {

class FormView;

// From now on the window takes a .kvx file that is dropped on it, and hands on its path; not while
// its form is at work or another window is to be answered first.
void takeDroppedSets(FormView& view, std::function<void(const std::string& file)> take);

}  // namespace korvex::qt
