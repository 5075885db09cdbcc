// Values in Wine's registry text. Numbers are read as C's strtoul() reads them, as Wine does so.
#include "platform/wine/wine_text_lines.h"

#include <array>
#include <cstdint>

#include "platform/text/reg_hex.h"
#include "platform/text/text.h"
#include "platform/wine/wine_text_strings.h"

namespace korvex::platform {

namespace {

constexpr std::size_t kLongestValueName = 16383;
constexpr std::size_t kLastColumn = 76;  // a comma beyond it ends the line

// How data can begin.
struct DataForm {
  std::string_view tag;
  RegType type;
};
constexpr std::array<DataForm, 4> kTextForms{{{"\"", REG_SZ},
                                              {"str:\"", REG_SZ},
                                              {"str(2):\"", REG_EXPAND_SZ},
                                              {"str(7):\"", REG_MULTI_SZ}}};

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool isText(RegType type) {
  return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

// Hexadecimal digits, with or without "0x"; too many give the largest number. Moves at past them.
std::uint64_t readNumber(std::string_view line, std::size_t& at) {
  if (line.size() - at > 2 && line[at] == '0' && (line[at + 1] | 0x20) == 'x' &&
      hexDigit(line[at + 2]) >= 0) {
    at += 2;
  }
  std::uint64_t number = 0;
  bool isTooLarge = false;
  for (; at < line.size() && hexDigit(line[at]) >= 0; ++at) {
    isTooLarge = isTooLarge || number >> 60 != 0;
    number = number << 4 | static_cast<unsigned>(hexDigit(line[at]));
  }
  return isTooLarge ? ~std::uint64_t{0} : number;
}

std::uint32_t readSignedNumber(std::string_view line, std::size_t& at) {
  const std::size_t begin = at;
  at = skipWineBlanks(line, at);
  const bool isNegative = at < line.size() && line[at] == '-';
  if (at < line.size() && (line[at] == '-' || line[at] == '+')) ++at;
  const std::size_t digits = at;
  const std::uint64_t number = readNumber(line, at);
  if (at == digits) at = begin;
  // Too large a number stays the largest whatever its sign.
  return static_cast<std::uint32_t>(isNegative && ~number != 0 ? 0 - number : number);
}

// One line of bytes; false for one above ff. Stops at the first thing that is no byte.
bool readByteLine(std::string_view line, std::size_t& at, std::string& bytes) {
  while (at < line.size() && hexDigit(line[at]) >= 0) {
    const std::uint64_t byte = readNumber(line, at);
    if (byte > 0xFF) return false;
    bytes += static_cast<char>(byte);
    at = skipWineBlanks(line, at);
    if (at < line.size() && line[at] == ',') at = skipWineBlanks(line, at + 1);
  }
  return true;
}

void appendBytes(std::string_view bytes, std::size_t column, std::string& out) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  out.reserve(out.size() + bytes.size() * 7 / 2);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    out += kDigits[byte >> 4];
    out += kDigits[byte & 15];
    if (i + 1 == bytes.size()) break;
    out += ',';
    column += 3;
    if (column > kLastColumn) {
      out += "\\\n  ";
      column = 2;
    }
  }
}

std::string toHex(std::uint32_t number, std::size_t least) {
  std::string digits;
  for (; number != 0 || digits.size() < least; number >>= 4) {
    digits.insert(digits.begin(), "0123456789abcdef"[number & 15]);
  }
  return digits;
}

std::uint32_t dwordOf(std::string_view data) {
  std::uint32_t number = 0;
  for (std::size_t i = 4; i-- > 0;) number = number << 8 | static_cast<unsigned char>(data[i]);
  return number;
}

}  // namespace

std::size_t skipWineBlanks(std::string_view line, std::size_t at) {
  while (at < line.size() && isBlank(line[at])) ++at;
  return at;
}

bool WineLines::nextLine(std::string_view& line) {
  if (at_ >= text_.size()) return false;
  const std::size_t end = text_.find('\n', at_);
  line = text_.substr(at_, end - at_);
  at_ = end == std::string_view::npos ? text_.size() : end + 1;
  if (end != std::string_view::npos && !line.empty() && line.back() == '\r') line.remove_suffix(1);
  return true;
}

bool WineLines::next(bool inKey, WineRecord& record) {
  const std::size_t begin = at_;
  if (!nextLine(record.line)) return false;
  record.isReadable = record.isCutOff = false;
  const std::size_t first = skipWineBlanks(record.line, 0);
  const char c = first < record.line.size() ? record.line[first] : '\0';
  record.kind = first == record.line.size() ? WineRecord::Kind::Blank
                : c == '['                  ? WineRecord::Kind::Header
                : c == '#'                  ? WineRecord::Kind::Option
                                            : WineRecord::Kind::Other;
  if (inKey && (c == '@' || c == '"')) readValue(first, record);
  record.bytes = text_.substr(begin, at_ - begin);
  return true;
}

void WineLines::readValue(std::size_t at, WineRecord& record) {
  const std::string_view line = record.line;
  record.value.name.clear();
  if (line[at++] == '"') {
    if (!readWineString(line, at, '"', record.value.name)) return;
    if (record.value.name.size() > kLongestValueName &&
        characterCount(record.value.name) > kLongestValueName) {
      return;
    }
  }
  at = skipWineBlanks(line, at);
  if (at == line.size() || line[at] != '=') return;
  record.prefix = at + 1;
  record.kind = WineRecord::Kind::Value;
  record.value.data.clear();
  record.isReadable = readData(skipWineBlanks(line, at + 1), record);
}

bool WineLines::readData(std::size_t at, WineRecord& record) {
  const std::string_view line = record.line;
  const std::string_view rest = line.substr(at);
  HiveValue& value = record.value;
  for (const DataForm& form : kTextForms) {
    if (!rest.starts_with(form.tag)) continue;
    value.type = form.type;
    at += form.tag.size();
    if (!readWineString(line, at, '"', value.data)) return false;
    value.data += '\0';
    return true;
  }
  if (rest.starts_with("dword:")) {
    value.type = REG_DWORD;
    at += 6;
    const std::uint32_t number = readSignedNumber(line, at);
    for (unsigned shift = 0; shift < 32; shift += 8) {
      value.data += static_cast<char>(number >> shift & 0xFF);
    }
    return true;
  }
  value.type = REG_BINARY;
  if (rest.starts_with("hex:")) return readBytes(line, at + 4, record);
  if (!rest.starts_with("hex(")) return false;
  at += 4;
  value.type = readSignedNumber(line, at);
  if (line.substr(at, 2) != "):") return false;
  return readBytes(line, at + 2, record);
}

bool WineLines::readBytes(std::string_view line, std::size_t at, WineRecord& record) {
  std::string& bytes = record.value.data;
  while (true) {
    if (!readByteLine(line, at, bytes)) return false;
    at = skipWineBlanks(line, at);
    if (at == line.size() || line[at] == '\0') break;
    if (line[at] != '\\') return false;
    if (!nextLine(line)) {
      record.isCutOff = true;
      return false;
    }
    at = skipWineBlanks(line, 0);
  }
  if (isText(record.value.type)) bytes = utf16leToUtf8(bytes);
  return true;
}

bool readWinePath(std::string_view line, std::size_t& at, std::string& path) {
  at = skipWineBlanks(line, 0) + 1;
  return at <= line.size() && readWineString(line, at, ']', path);
}

void appendWineName(std::string_view name, std::string& out) {
  if (name.empty()) {
    out += "@=";
    return;
  }
  out += '"';
  appendWineString(utf8ToUtf16le(name), "\"", out);
  out += "\"=";
}

void appendWineData(const HiveValue& value, std::size_t column, std::string& out) {
  if (isText(value.type)) {
    const std::string units = utf8ToUtf16le(value.data);
    const std::size_t size = units.size();
    if (size >= 2 && size % 2 == 0 && units[size - 1] == '\0' && units[size - 2] == '\0') {
      if (value.type != REG_SZ) out += "str(" + toHex(value.type, 1) + "):";
      out += '"';
      appendWineString(std::string_view(units).substr(0, size - 2), "\"", out);
      out += '"';
    } else {
      const std::string tag = "hex(" + toHex(value.type, 1) + "):";
      out += tag;
      appendBytes(units, column + tag.size(), out);
    }
  } else if (value.type == REG_DWORD && value.data.size() == 4) {
    out += "dword:" + toHex(dwordOf(value.data), 8);
  } else {
    const std::string tag =
        value.type == REG_BINARY ? "hex:" : "hex(" + toHex(value.type, 1) + "):";
    out += tag;
    appendBytes(value.data, column + tag.size(), out);
  }
  out += '\n';
}

}  // namespace korvex::platform
