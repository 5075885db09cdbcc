// MainPages: the seven pages of the main window: the catalogue's rows and, below them, what the
// sections add.
#pragma once

#include <memory>
#include <vector>

#include "engine/tweak_controls.h"
#include "forms/form.h"
#include "main_window/page_section.h"

namespace korvex::main_window {

class MainPages {
 public:
  static constexpr int kPageCount = 7;

  // The strip's seven tabs, in order.
  static std::vector<forms::Tab> tabs();

  explicit MainPages(forms::Form& form) : form_(form), controls_(form) {}

  const std::vector<engine::TweakControl>& controls() const { return controls_.all(); }
  // One part per page: titled groups, or a sentence on an empty page. To be asked for once.
  forms::Layout layout(forms::TabStrip& tabMain,
                       const std::vector<std::unique_ptr<PageSection>>& sections);

 private:
  forms::Layout page(int index, const std::vector<std::unique_ptr<PageSection>>& sections);

  forms::Form& form_;
  engine::TweakControls controls_;
};

}  // namespace korvex::main_window
