// Registry values as text: type names, data as people write it, data as people read it.
//
// Data bytes here are in the form of platform/registry.h: text is UTF-8 with its terminating zero.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"

namespace korvex::cli {

struct Value {
  platform::RegType type = platform::REG_NONE;
  std::string bytes;
  bool operator==(const Value&) const = default;
};

bool isTextType(platform::RegType type);
std::string typeName(platform::RegType type);  // "REG_SZ"; "REG_TYPE_0x00000063" for an unknown one

// The bytes as the value is stored on NT: text in UTF-16, two lower-case digits a byte.
std::string hexOf(const Value& value);
// A text type's text, without its terminating zero.
std::string textOf(const Value& value);
std::vector<std::string> stringsOf(const Value& value);  // REG_MULTI_SZ
// Whether the bytes are a number of that type's width (a REG_DWORD of other than 4 bytes is not).
bool isNumber(const Value& value);
std::uint64_t numberOf(const Value& value);

// One line for people: the text, "0x1 (1)", the hex digits, strings with "\0" between them.
// Control characters are shown as \xNN, so that no value can steer a terminal.
std::string displayText(const Value& value);
std::string printable(std::string_view text);
// The same of a message of several lines, as one.
std::string oneLine(std::string_view text);

// The value that "reg set" is told. Several words of data are the strings of a REG_MULTI_SZ; a
// single one may hold them with "\0" (backslash, zero) between. Throws Failure (Usage).
Value parseValue(std::string_view typeText, const std::vector<std::string>& data);

}  // namespace korvex::cli
