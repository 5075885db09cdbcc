// Hexadecimal digits, by table: hex data is most of a large file.
#include "platform/text/reg_hex.h"

#include <array>

namespace korvex::platform {
namespace {

constexpr std::size_t kLastColumn = 76;  // a comma beyond it ends the line
constexpr std::size_t kIndent = 2;

constexpr auto kDigits = [] {
  std::array<std::int8_t, 256> digits{};
  for (std::size_t c = 0; c < digits.size(); ++c) {
    if (c >= '0' && c <= '9') {
      digits[c] = static_cast<std::int8_t>(c - '0');
    } else if (c >= 'a' && c <= 'f') {
      digits[c] = static_cast<std::int8_t>(c - 'a' + 10);
    } else if (c >= 'A' && c <= 'F') {
      digits[c] = static_cast<std::int8_t>(c - 'A' + 10);
    } else {
      digits[c] = -1;
    }
  }
  return digits;
}();

// "00,01,...": every byte as it stands in the text.
constexpr auto kByteText = [] {
  std::array<std::array<char, 3>, 256> text{};
  constexpr std::string_view digits = "0123456789abcdef";
  for (std::size_t b = 0; b < text.size(); ++b) text[b] = {digits[b >> 4], digits[b & 15], ','};
  return text;
}();

bool isBlank(char c) { return c == ' ' || c == '\t'; }

const char* skipBlanks(const char* at, const char* end) {
  while (at < end && isBlank(*at)) ++at;
  return at;
}

bool endsThere(const char* at, const char* end) { return at == end || *at == ';'; }

// The usual "aa,bb,cc," without anything between; stops at the first thing that is different.
const char* appendPlainBytes(const char* at, const char* end, std::string& bytes) {
  const std::size_t before = bytes.size();
  bytes.resize(before + static_cast<std::size_t>(end - at) / 3);
  char* to = bytes.data() + before;
  while (end - at >= 3) {
    const int value = (hexDigit(at[0]) * 16) | hexDigit(at[1]);  // negative if either is
    if (value < 0 || at[2] != ',') break;
    *to++ = static_cast<char>(value);
    at += 3;
  }
  bytes.resize(static_cast<std::size_t>(to - bytes.data()));
  return at;
}

}  // namespace

int hexDigit(char c) { return kDigits[static_cast<unsigned char>(c)]; }

bool parseHexNumber(std::string_view text, std::size_t maxDigits, std::uint32_t& number) {
  if (text.empty() || text.size() > maxDigits) return false;
  std::uint32_t value = 0;
  for (const char c : text) {
    const int digit = hexDigit(c);
    if (digit < 0) return false;
    value = value * 16 + static_cast<std::uint32_t>(digit);
  }
  number = value;
  return true;
}

HexLine appendHexBytes(std::string_view line, std::string& bytes) {
  const char* at = line.data();
  const char* const end = at + line.size();
  while (true) {
    at = appendPlainBytes(skipBlanks(at, end), end, bytes);
    at = skipBlanks(at, end);
    if (endsThere(at, end)) return HexLine::Complete;
    if (*at == '\\') {
      return endsThere(skipBlanks(at + 1, end), end) ? HexLine::Continues : HexLine::Malformed;
    }
    int value = hexDigit(*at++);
    if (value < 0) return HexLine::Malformed;
    if (at < end && hexDigit(*at) >= 0) value = value * 16 + hexDigit(*at++);
    bytes += static_cast<char>(value);
    at = skipBlanks(at, end);
    if (endsThere(at, end)) return HexLine::Complete;
    if (*at++ != ',') return HexLine::Malformed;
  }
}

void appendHexText(std::string_view bytes, std::size_t column, std::string& text) {
  if (bytes.empty()) return;
  const std::size_t before = text.size();
  // Three characters a byte, and five for each of at most this many line ends.
  text.resize(before + 3 * bytes.size() + 5 * (bytes.size() / 24 + 2));
  char* to = text.data() + before;
  for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
    for (const char c : kByteText[static_cast<unsigned char>(bytes[i])]) *to++ = c;
    column += 3;
    if (column > kLastColumn) {
      for (const char c : std::string_view("\\\r\n  ")) *to++ = c;
      column = kIndent;
    }
  }
  const auto& last = kByteText[static_cast<unsigned char>(bytes.back())];
  *to++ = last[0];
  *to++ = last[1];
  text.resize(static_cast<std::size_t>(to - text.data()));
}

}  // namespace korvex::platform
