// Whether an NT hive is whole: what writes it relies on that, and reading is bounded by it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace korvex::platform {

enum class RegfSoundness {
  Whole,
  Damaged,   // what is still whole can be read key by key; nothing may be written
  Hopeless,  // no root, or keys nested deeper than Windows allows: not to be read at all
};

// Looks at every bin and at every cell that the tree of keys uses, in time linear in the size of
// the file. In a whole hive no cell is used twice (but security descriptors, which are shared), so
// that freeing one can hit no other. bytes are a hive's, with its header.
RegfSoundness checkRegf(std::string_view bytes);

}  // namespace korvex::platform
