// Texts without what stands around them.
#pragma once

#include <string_view>

namespace korvex::platform {

// The text without these characters at its beginning and end; a view of the same text.
constexpr std::string_view trimmed(std::string_view text, std::string_view dropped = " \t") {
  const std::size_t first = text.find_first_not_of(dropped);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(dropped) + 1 - first);
}

}  // namespace korvex::platform
