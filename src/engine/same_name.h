// Comparing ASCII texts without regard to case: the names and words that Windows and Korvex define.
#pragma once

#include <cstddef>
#include <string_view>

namespace korvex::engine {

constexpr bool sameName(std::string_view left, std::string_view right) {
  const auto upper = [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  };
  if (left.size() != right.size()) return false;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (upper(left[i]) != upper(right[i])) return false;
  }
  return true;
}

}  // namespace korvex::engine
