// What a restore would change, told: lines for people, at most so many of them, and JSON for
// scripts.
#pragma once

#include <cstddef>
#include <string>

#include "backup/restore_offer.h"
#include "cli/context.h"
#include "cli/output.h"

namespace korvex::cli {

class RestoreList {
 public:
  static constexpr std::size_t kMostLines = 200;

  explicit RestoreList(Context& context) : context_(context) {}

  // Prints the line, as long as there is room.
  void add(const backup::RestoreChange& change);
  // Changes that are only counted.
  void addCount(std::size_t changes) { count_ += changes; }
  // "... and 12 more."
  void end();
  std::size_t count() const { return count_; }

 private:
  Context& context_;
  std::size_t count_ = 0;
  std::size_t printed_ = 0;
};

// "1 change", "12 changes".
std::string changesText(std::size_t count);
// {"kind","place","name","before","after"}; what a change of that kind does not have is null.
Json changeJson(const backup::RestoreChange& change);

}  // namespace korvex::cli
