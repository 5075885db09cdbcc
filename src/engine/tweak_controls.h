// TweakControls: the controls that rows of the catalogue put on a form, and where they stand.
#pragma once

#include <string_view>
#include <vector>

#include "engine/tweak.h"
#include "forms/form.h"

namespace korvex::engine {

struct TweakControl {
  const Tweak* tweak;
  forms::Control* control;
};

class TweakControls {
 public:
  // Makes the controls of every row of the form, which owns them. Rows without a control are left
  // out.
  explicit TweakControls(forms::Form& form);

  const std::vector<TweakControl>& all() const { return controls_; }
  // The titled groups of one page, in the order of the rows. Each can be asked for once.
  std::vector<forms::Layout> groups(Page page);
  // The same of all pages: for a form that has none.
  std::vector<forms::Layout> groups();

 private:
  struct Group {
    Page page;
    std::string_view title;
    std::vector<forms::Layout> parts;
    // Labels and fields in turn, after the boxes: those of one group stand below each other.
    std::vector<forms::Layout> fields;
  };

  void makeControl(const Tweak& tweak, Group& group);
  void makeField(const Tweak& tweak, Group& group);
  forms::Control& ownField(const Tweak& tweak);
  static forms::Layout layoutOf(Group& group);

  forms::Form& form_;
  std::vector<TweakControl> controls_;
  std::vector<Group> groups_;
};

}  // namespace korvex::engine
