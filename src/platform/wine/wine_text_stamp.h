// Header lines of keys in Wine's registry text, with the time of now.
#pragma once

#include <string>
#include <string_view>

namespace korvex::platform {

// A blank line, the header with this path, and the time.
std::string newWineBlock(std::string_view path);
// The block with its times replaced: the seconds of its header line, and "#time=".
std::string stampedWineBlock(std::string_view text);

}  // namespace korvex::platform
