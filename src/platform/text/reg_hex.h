// Hexadecimal digits of registry-editor files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace korvex::platform {

// 0 to 15, or a negative number for what is no digit.
int hexDigit(char c);

// All of text is 1 to 8 digits (maxDigits), neither more nor anything else.
bool parseHexNumber(std::string_view text, std::size_t maxDigits, std::uint32_t& number);

enum class HexLine {
  Complete,   // the value ends with this line
  Continues,  // the line ended in ",\"
  Malformed,
};

// Reads one line of comma-separated bytes and appends them: one or two digits each, blanks around
// them, a trailing comma, a comment after ";".
HexLine appendHexBytes(std::string_view line, std::string& bytes);

// Appends bytes as "aa,bb,...", wrapped as the registry editor does. column is what the line holds
// already, in characters.
void appendHexText(std::string_view bytes, std::size_t column, std::string& text);

}  // namespace korvex::platform
