// TweakControls: the controls that rows of the catalogue put on a form, and where they stand.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/tweak.h"
#include "forms/form.h"

namespace korvex::engine {

struct TweakControl {
  const Tweak* tweak;
  forms::Control* control;
};

// The name of one button of an option pair: "optAppend_Overwrite0", "optAppend_Overwrite1".
std::string optionName(const Tweak& pair, int index);
// What the row's box shows on a form, as a CheckValue; of an option pair, checked where its first
// button is set. Nothing where the form has no such control.
std::optional<int> shownState(const forms::Form& form, const Tweak& row);
// The other way round. False where the form has no such control.
bool showState(const forms::Form& form, const Tweak& row, int value);

class TweakControls {
 public:
  // Makes the controls of every row of the form, which owns them. Rows without a control are left
  // out.
  explicit TweakControls(forms::Form& form);

  // Both buttons of an option pair.
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
  void makeBox(const Tweak& tweak, Group& group);
  void makePair(const Tweak& tweak, Group& group);
  void add(const Tweak& tweak, forms::Control& control);
  forms::Control& ownField(const Tweak& tweak);
  static forms::Layout layoutOf(Group& group);

  forms::Form& form_;
  std::vector<TweakControl> controls_;
  std::vector<Group> groups_;
};

}  // namespace korvex::engine
