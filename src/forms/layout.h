// Where the controls of a form stand, as plain data: nothing is placed by pixel. A front end turns
// it into its own layouts; the order of the data is the tab order.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace korvex::forms {

class Control;
class TabStrip;

struct Layout {
  enum class Kind {
    Column,   // parts one below the other
    Row,      // parts side by side
    Grid,     // parts in `columns` columns, filled row by row: labels beside their fields
    Flow,     // parts in as many columns as the width allows, filled column by column
    Group,    // a titled frame around a column of parts
    Pages,    // one part per tab of `control`, a TabStrip
    Control,  // one control
    Space,    // takes the room that is left
  };

  Kind kind = Kind::Column;
  std::string title;           // Group
  Control* control = nullptr;  // Control, Pages; a Group that is a Frame
  int columns = 2;             // Grid
  std::vector<Layout> parts;

  static Layout column(std::vector<Layout> parts) {
    return {Kind::Column, "", nullptr, 0, std::move(parts)};
  }
  static Layout row(std::vector<Layout> parts) {
    return {Kind::Row, "", nullptr, 0, std::move(parts)};
  }
  static Layout flow(std::vector<Layout> parts) {
    return {Kind::Flow, "", nullptr, 0, std::move(parts)};
  }
  static Layout space() { return {Kind::Space, "", nullptr, 0, {}}; }
  static Layout of(Control& control) { return {Kind::Control, "", &control, 0, {}}; }
  static Layout grid(int columns, std::vector<Layout> parts) {
    return {Kind::Grid, "", nullptr, columns, std::move(parts)};
  }
  static Layout group(std::string title, std::vector<Layout> parts) {
    return {Kind::Group, std::move(title), nullptr, 0, std::move(parts)};
  }
  static Layout pages(Control& tabStrip, std::vector<Layout> parts) {
    return {Kind::Pages, "", &tabStrip, 0, std::move(parts)};
  }
};

}  // namespace korvex::forms
