// Values to text and back.
#include "cli/value_text.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <limits>

#include "cli/failure.h"
#include "platform/text/text.h"

namespace korvex::cli {
namespace {

using namespace platform;

struct TypeRow {
  RegType type;
  std::string_view name;
};

constexpr std::array kTypes{
    TypeRow{REG_NONE, "REG_NONE"},
    TypeRow{REG_SZ, "REG_SZ"},
    TypeRow{REG_EXPAND_SZ, "REG_EXPAND_SZ"},
    TypeRow{REG_BINARY, "REG_BINARY"},
    TypeRow{REG_DWORD, "REG_DWORD"},
    TypeRow{REG_DWORD_BIG_ENDIAN, "REG_DWORD_BIG_ENDIAN"},
    TypeRow{REG_LINK, "REG_LINK"},
    TypeRow{REG_MULTI_SZ, "REG_MULTI_SZ"},
    TypeRow{RegType{8}, "REG_RESOURCE_LIST"},
    TypeRow{RegType{9}, "REG_FULL_RESOURCE_DESCRIPTOR"},
    TypeRow{RegType{10}, "REG_RESOURCE_REQUIREMENTS_LIST"},
    TypeRow{REG_QWORD, "REG_QWORD"},
};

constexpr std::string_view kRawPrefix = "REG_TYPE_0x";

std::size_t numberWidth(RegType type) {
  if (type == REG_DWORD || type == REG_DWORD_BIG_ENDIAN) return 4;
  return type == REG_QWORD ? 8 : 0;
}

std::string hexDigits(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string result;
  result.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    result += digits[byte >> 4];
    result += digits[byte & 15];
  }
  return result;
}

Failure badData(std::string_view type, std::string_view data, std::string_view expected) {
  return {ExitCode::Usage, "bad-data",
          fmt::format("'{}' is no {}: {}", printable(data), type, expected)};
}

std::string parseHex(std::string_view typeText, std::string_view data) {
  std::string digits;
  for (const char c : data) {
    if (c != ',' && c != ' ') digits += c;
  }
  std::string bytes;
  const bool odd = digits.size() % 2 != 0;
  for (std::size_t i = 0; !odd && i < digits.size(); i += 2) {
    unsigned value = 0;
    const char* end = digits.data() + i + 2;
    const auto parsed = std::from_chars(digits.data() + i, end, value, 16);
    if (parsed.ptr != end) throw badData(typeText, data, "use hex digits, two a byte, \"0a1bff\".");
    bytes += static_cast<char>(value);
  }
  if (odd) throw badData(typeText, data, "it has an odd number of hex digits; use two a byte.");
  return bytes;
}

std::string parseNumber(std::string_view typeText, RegType type, std::string_view data) {
  const bool hex = data.starts_with("0x") || data.starts_with("0X");
  const std::string_view digits = hex ? data.substr(2) : data;
  std::uint64_t number = 0;
  const char* end = digits.data() + digits.size();
  const auto parsed = std::from_chars(digits.data(), end, number, hex ? 16 : 10);
  const std::size_t width = numberWidth(type);
  if (digits.empty() || parsed.ec != std::errc{} || parsed.ptr != end ||
      (width == 4 && number > std::numeric_limits<std::uint32_t>::max())) {
    throw badData(typeText, data,
                  fmt::format("use a number of at most {} bits, 181 or 0xb5.", width * 8));
  }
  std::string bytes;
  for (std::size_t i = 0; i < width; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFF);
  if (type == REG_DWORD_BIG_ENDIAN) bytes.assign(bytes.rbegin(), bytes.rend());
  return bytes;
}

std::string parseStrings(const std::vector<std::string>& data) {
  std::vector<std::string> strings = data;
  if (data.size() == 1) {
    strings.clear();
    std::string_view rest = data[0];
    while (!rest.empty()) {
      const std::size_t end = rest.find("\\0");
      strings.emplace_back(rest.substr(0, end));
      rest = end == std::string_view::npos ? "" : rest.substr(end + 2);
    }
  }
  std::string bytes;
  for (const std::string& string : strings) {
    if (string.empty()) {
      throw Failure(ExitCode::Usage, "bad-data",
                    "A REG_MULTI_SZ cannot hold an empty string: it would end the list.");
    }
    bytes += string;
    bytes += '\0';
  }
  bytes += '\0';
  return bytes;
}

RegType parseType(std::string_view text) {
  for (const TypeRow& row : kTypes) {
    if (sameName(row.name, text)) return row.type;
  }
  if (text.size() > kRawPrefix.size() && sameName(text.substr(0, kRawPrefix.size()), kRawPrefix)) {
    RegType type = 0;
    const char* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data() + kRawPrefix.size(), end, type, 16);
    if (parsed.ec == std::errc{} && parsed.ptr == end) return type;
  }
  throw Failure(ExitCode::Usage, "bad-type",
                fmt::format("'{}' is no value type. Use REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ, "
                            "REG_DWORD, REG_QWORD, REG_BINARY or REG_NONE.",
                            printable(text)));
}

}  // namespace

bool isTextType(RegType type) {
  return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

std::string typeName(RegType type) {
  for (const TypeRow& row : kTypes) {
    if (row.type == type) return std::string(row.name);
  }
  return fmt::format("{}{:08x}", kRawPrefix, type);
}

std::string hexOf(const Value& value) {
  return hexDigits(isTextType(value.type) ? utf8ToUtf16le(value.bytes) : value.bytes);
}

std::string textOf(const Value& value) {
  std::string text = value.bytes;
  if (text.ends_with('\0')) text.pop_back();
  return text;
}

std::vector<std::string> stringsOf(const Value& value) {
  std::vector<std::string> strings;
  std::string_view rest = value.bytes;
  // The zero of the last string and the one of the list: neither begins another string.
  if (rest.ends_with('\0')) rest.remove_suffix(1);
  if (rest.ends_with('\0')) rest.remove_suffix(1);
  while (!rest.empty()) {
    const std::size_t end = rest.find('\0');
    strings.emplace_back(rest.substr(0, end));
    rest = end == std::string_view::npos ? "" : rest.substr(end + 1);
  }
  return strings;
}

bool isNumber(const Value& value) {
  const std::size_t width = numberWidth(value.type);
  return width != 0 && value.bytes.size() == width;
}

std::uint64_t numberOf(const Value& value) {
  std::uint64_t number = 0;
  const std::size_t width = value.bytes.size();
  for (std::size_t i = 0; i < width; ++i) {
    const std::size_t at = value.type == REG_DWORD_BIG_ENDIAN ? width - 1 - i : i;
    number |= std::uint64_t{static_cast<unsigned char>(value.bytes[at])} << (8 * i);
  }
  return number;
}

std::string printable(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
    const bool c1 = byte == 0xC2 && next >= 0x80 && next < 0xA0;  // U+0080 to U+009F in UTF-8
    if (byte < 0x20 || byte == 0x7F || c1) {
      fmt::format_to(std::back_inserter(result), "\\x{:02x}", c1 ? next : byte);
      if (c1) ++i;
    } else {
      result += text[i];
    }
  }
  return result;
}

std::string displayText(const Value& value) {
  if (value.type == REG_MULTI_SZ) {
    std::string result;
    for (const std::string& string : stringsOf(value)) {
      if (!result.empty()) result += "\\0";
      result += printable(string);
    }
    return result;
  }
  if (isTextType(value.type)) return printable(textOf(value));
  if (isNumber(value)) return fmt::format("0x{:x} ({})", numberOf(value), numberOf(value));
  return hexDigits(value.bytes);
}

std::string oneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    if (c != '\r') line += c == '\n' ? ' ' : c;
  }
  return printable(line);
}

Value parseValue(std::string_view typeText, const std::vector<std::string>& data) {
  const RegType type = parseType(typeText);
  if (type == REG_MULTI_SZ) return {type, parseStrings(data)};
  if (data.size() > 1) {
    throw Failure(
        ExitCode::Usage, "bad-data",
        "Only REG_MULTI_SZ takes several words of data. Put a text with blanks in quotes.");
  }
  const std::string_view word = data.empty() ? std::string_view{} : std::string_view(data[0]);
  if (isTextType(type)) {
    std::string bytes(word);
    bytes += '\0';
    return {type, std::move(bytes)};
  }
  if (numberWidth(type) != 0) return {type, parseNumber(typeText, type, word)};
  return {type, parseHex(typeText, word)};
}

}  // namespace korvex::cli
