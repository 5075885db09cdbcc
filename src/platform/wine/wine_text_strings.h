// Wine's escapes in key paths, value names and text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace korvex::platform {

// Reads from line[at] up to the closing character and moves at past it. False where it does not
// come before the end of the line or a NUL.
bool readWineString(std::string_view line, std::size_t& at, char closing, std::string& text);

// Without the quotes. escaped are the characters that need a backslash here, besides itself.
void appendWineString(std::string_view utf16le, std::string_view escaped, std::string& out);

}  // namespace korvex::platform
