// MainPages: the controls that the catalogue's rows put on the pages of the main window, and where
// they stand.
#pragma once

#include <vector>

#include "engine/tweak.h"
#include "forms/form.h"

namespace korvex::main_window {

struct TweakControl {
  const engine::Tweak* tweak;
  forms::Control* control;
};

class MainPages {
 public:
  static constexpr int kPageCount = 7;

  // The strip's seven tabs, in order.
  static std::vector<forms::Tab> tabs();

  // Makes the controls of every row of the form, which owns them.
  explicit MainPages(forms::Form& form);

  const std::vector<TweakControl>& controls() const { return controls_; }
  // One part per page: titled groups in the order of the rows, or a sentence on an empty page.
  forms::Layout layout(forms::TabStrip& tabMain);

 private:
  struct Group {
    std::string_view title;
    std::vector<forms::Layout> parts;
  };

  forms::Layout makeControl(const engine::Tweak& tweak);
  forms::Layout page(int index);

  forms::Form& form_;
  std::vector<TweakControl> controls_;
  std::vector<Group> pages_[kPageCount];
};

}  // namespace korvex::main_window
