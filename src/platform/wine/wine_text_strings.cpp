// Text is UTF-16 units to Wine: what is not ASCII stands as "\x20ac", a unit each.
#include "platform/wine/wine_text_strings.h"

#include <array>
#include <cstdint>

#include "platform/text/reg_hex.h"
#include "platform/text/text.h"

namespace korvex::platform {

namespace {

constexpr std::string_view kControlLetters = ".......abtnvfr.............e....";

bool isAscii(char c) { return (static_cast<unsigned char>(c) & 0x80) == 0; }
bool isOctal(unsigned unit) { return unit >= '0' && unit <= '7'; }

void appendUnit(unsigned unit, std::string& out) {
  out += static_cast<char>(unit & 0xFF);
  out += static_cast<char>(unit >> 8 & 0xFF);
}

// How much of line is plain ASCII without escapes, from at on.
std::size_t plainEnd(std::string_view line, std::size_t at, char closing) {
  while (at < line.size() && line[at] != closing && line[at] != '\\' && line[at] != '\0' &&
         isAscii(line[at])) {
    ++at;
  }
  return at;
}

unsigned readDigits(std::string_view line, std::size_t& at, unsigned base, std::size_t most) {
  unsigned number = 0;
  for (const std::size_t end = at + most; at < end && at < line.size(); ++at) {
    const int digit = hexDigit(line[at]);
    if (digit < 0 || digit >= static_cast<int>(base)) break;
    number = number * base + static_cast<unsigned>(digit);
  }
  return number;
}

// What stands after a backslash. Unknown escapes are the character itself.
unsigned readEscape(std::string_view line, std::size_t& at) {
  const char c = line[at];
  if (isOctal(static_cast<unsigned char>(c))) return readDigits(line, at, 8, 3);
  ++at;
  if (c == 'x') {
    if (at == line.size() || hexDigit(line[at]) < 0) return 'x';
    return readDigits(line, at, 16, 4);
  }
  const std::size_t control = c == '.' ? std::string_view::npos : kControlLetters.find(c);
  return control == std::string_view::npos ? static_cast<unsigned char>(c)
                                           : static_cast<unsigned>(control);
}

// Wine reads what is not escaped as UTF-8 and passes over the rest.
void readRawCharacter(std::string_view line, std::size_t& at, std::string& units) {
  const auto first = static_cast<unsigned char>(line[at]);
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  const std::string_view bytes = line.substr(at, length);
  const bool isSurrogate =
      first == 0xED && bytes.size() > 1 && static_cast<unsigned char>(bytes[1]) >= 0xA0;
  if (bytes.size() < length || isSurrogate || !isWellFormed(bytes)) {
    ++at;
    return;
  }
  appendUtf16le(bytes, units);
  at += length;
}

bool readUnits(std::string_view line, std::size_t& at, char closing, std::string& units) {
  while (at < line.size() && line[at] != '\0') {
    const char c = line[at];
    if (c == closing) {
      ++at;
      return true;
    }
    if (!isAscii(c)) {
      readRawCharacter(line, at, units);
      continue;
    }
    ++at;
    if (c != '\\') {
      appendUnit(static_cast<unsigned char>(c), units);
    } else if (at < line.size() && line[at] != '\0' && isAscii(line[at])) {
      appendUnit(readEscape(line, at), units);
    }
  }
  return false;
}

void appendDigits(unsigned number, unsigned bitsEach, std::size_t least, std::string& out) {
  std::array<char, 8> digits{};
  std::size_t count = 0;
  do {
    digits[count++] = "0123456789abcdef"[number & ((1U << bitsEach) - 1)];
    number >>= bitsEach;
  } while (number != 0 || count < least);
  while (count > 0) out += digits[--count];
}

}  // namespace

bool readWineString(std::string_view line, std::size_t& at, char closing, std::string& text) {
  const std::size_t end = plainEnd(line, at, closing);
  text.assign(line.substr(at, end - at));
  if (end < line.size() && line[end] == closing) {
    at = end + 1;
    return true;
  }
  std::string units;
  at = end;
  if (!readUnits(line, at, closing, units)) return false;
  appendUtf8(units, text);
  return true;
}

void appendWineString(std::string_view utf16le, std::string_view escaped, std::string& out) {
  const std::size_t count = utf16le.size() / 2;
  const auto unitAt = [utf16le](std::size_t i) -> unsigned {
    return static_cast<unsigned char>(utf16le[2 * i]) |
           static_cast<unsigned>(static_cast<unsigned char>(utf16le[2 * i + 1])) << 8;
  };
  for (std::size_t i = 0; i < count; ++i) {
    const unsigned unit = unitAt(i);
    const unsigned next = i + 1 < count ? unitAt(i + 1) : 0;
    if (unit > 127) {
      out += "\\x";
      appendDigits(unit, 4, next < 128 && hexDigit(static_cast<char>(next)) >= 0 ? 4 : 1, out);
    } else if (unit >= 32) {
      const char c = static_cast<char>(unit);
      if (c == '\\' || escaped.find(c) != std::string_view::npos) out += '\\';
      out += c;
    } else if (kControlLetters[unit] != '.') {
      out += '\\';
      out += kControlLetters[unit];
    } else {
      out += '\\';
      appendDigits(unit, 3, isOctal(next) ? 3 : 1, out);
    }
  }
}

}  // namespace korvex::platform
