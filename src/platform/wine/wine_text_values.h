// The lines of one key while its values are changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/wine/wine_text_lines.h"

namespace korvex::platform {

// A value keeps its place and its name as it is written there. New ones go where Wine would sort
// them, where the others are sorted; else behind them.
class WineKeyLines {
 public:
  // The blocks of the key in the order of the file; text outlives this.
  void addBlock(std::uint32_t number, std::string_view text);

  void set(const HiveValue& value);
  // False: there is no such value that can be read.
  bool remove(std::string_view name);

  bool hasNewValues() const { return !added_.empty(); }
  // Hands over each block's number and new text; the new values are in the last one.
  template <typename Take>
  void render(Take take) const {
    for (const Block& block : blocks_) take(block.number, textOf(block, &block == &blocks_.back()));
  }
  // Of a key without a block.
  std::string renderNew() const;

 private:
  struct Line {
    std::string_view bytes;
    std::string replaced;  // in place of bytes, if not empty
    std::size_t prefix = 0;
    WineRecord::Kind kind = WineRecord::Kind::Other;
    bool isReadable = false;
    bool isGone = false;
    std::string order;  // of a value

    std::string_view text() const { return replaced.empty() ? bytes : std::string_view(replaced); }
  };
  struct Block {
    std::uint32_t number = 0;
    std::vector<Line> lines;
  };
  struct Place {
    std::size_t block = 0;
    std::size_t line = 0;
  };
  using Places = std::vector<Place>;

  Line& at(Place place) { return blocks_[place.block].lines[place.line]; }
  Places* placesOf(std::string_view name);
  std::string textOf(const Block& block, bool withAdded) const;

  std::vector<Block> blocks_;
  std::unordered_map<std::string, Places> byName_;  // folded
  std::map<std::string, std::string> added_;        // the whole lines, by their order
};

// What Wine sorts names by.
std::string wineOrder(std::string_view name);

}  // namespace korvex::platform
