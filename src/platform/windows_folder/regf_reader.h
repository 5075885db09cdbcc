// What HiveFile tells of an NT hive, read from its cells.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/hives/hive_file.h"
#include "platform/windows_folder/regf_cells.h"
#include "platform/windows_folder/regf_header.h"

namespace korvex::platform {

// A node is the place of the key's cell in the file, as hivex counts, too.
constexpr HiveNode regfNode(RegfOffset offset) { return HiveNode{offset} + kRegfHeaderSize; }
constexpr RegfOffset regfOffset(HiveNode node) {
  return node < kRegfHeaderSize || node - kRegfHeaderSize >= kNoCell
             ? kNoCell
             : static_cast<RegfOffset>(node - kRegfHeaderSize);
}

// Text as Korvex has it, of the types that are text; other data is what it is.
std::string regfDataToText(RegType type, std::string&& data);
std::string regfDataFromText(RegType type, const std::string& text);

class RegfReader {
 public:
  explicit RegfReader(std::string_view bytes) : cells_(bytes) {}

  const RegfCells& cells() const { return cells_; }

  // Left out: keys that no path can name, as their names are empty or hold a NUL or a backslash.
  Status children(HiveNode key, std::vector<HiveChild>& children) const;
  // A NUL in a name is told as its symbol, U+2400.
  Status values(HiveNode key, std::vector<HiveValue>& values) const;
  Status linkTarget(HiveNode key, std::string& target) const;

 private:
  RegfCells cells_;
};

}  // namespace korvex::platform
