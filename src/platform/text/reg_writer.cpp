// Keys and values as the registry editor writes them.
#include "platform/text/reg_writer.h"

#include <algorithm>
#include <charconv>

#include "platform/text/reg_hex.h"

namespace korvex::platform {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr const char* kNotInCodePage = "the code page cannot hold it";
constexpr const char* kLineBreakInName = "its name holds a line break or a null character";
constexpr const char* kNoText = "it is no valid text";

bool holdsLineBreak(std::string_view text) {
  return std::any_of(text.begin(), text.end(),
                     [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
}

void appendQuoted(std::string_view text, std::string& out) {
  out += '"';
  while (!text.empty()) {
    const std::size_t plain = std::min(text.find_first_of("\"\\"), text.size());
    out.append(text.substr(0, plain));
    if (plain == text.size()) break;
    out += '\\';
    out += text[plain];
    text.remove_prefix(plain + 1);
  }
  out += '"';
}

// Whether a REG_SZ reads back the same from between quotes: one zero, at its end, and no line
// break. All others must go as bytes.
bool fitsQuotes(std::string_view data) {
  if (!data.ends_with('\0')) return false;
  data.remove_suffix(1);
  return !holdsLineBreak(data) && isWellFormed(data);
}

// Text without the two bytes that stand for the odd one at the end of UTF-16 data.
std::string_view withoutOddByte(std::string_view text) {
  const bool odd = text.size() >= 2 && text[text.size() - 2] == '\xFF';
  return text.substr(0, text.size() - (odd ? 2 : 0));
}

bool isText(RegType type) {
  return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

void appendNumber(std::uint32_t number, std::string& out) {
  char digits[8];
  const auto end = std::to_chars(digits, digits + sizeof digits, number, 16).ptr;
  out.append(digits, end);
}

void appendDword(std::string_view data, std::string& out) {
  constexpr std::string_view digits = "0123456789abcdef";
  out += "dword:";
  for (std::size_t i = data.size(); i-- > 0;) {
    const auto byte = static_cast<unsigned char>(data[i]);
    out += digits[byte >> 4];
    out += digits[byte & 15];
  }
}

}  // namespace

RegTextWriter::RegTextWriter(RegFormat format, const CodePage& codePage)
    : format_(format), codePage_(codePage) {}

void RegTextWriter::header() {
  if (format_ == RegFormat::Version5) {
    bytes_ += "\xFF\xFE";
    line_ = "Windows Registry Editor Version 5.00\r\n\r\n";
  } else {
    line_ = "REGEDIT4\r\n\r\n";
  }
  emit();
}

const char* RegTextWriter::beginKey(std::string_view fullName) {
  if (holdsLineBreak(fullName)) return kLineBreakInName;
  line_.assign("[").append(fullName).append("]").append(kLineEnd);
  return emit();
}

// The line as far as the sign.
const char* RegTextWriter::beginValue(std::string_view name) {
  if (holdsLineBreak(name)) return kLineBreakInName;
  line_.clear();
  if (name.empty()) {
    line_ += '@';
  } else {
    appendQuoted(name, line_);
  }
  line_ += '=';
  return nullptr;
}

const char* RegTextWriter::value(std::string_view name, RegType type, std::string_view data) {
  if (const char* trouble = beginValue(name)) return trouble;
  if (const char* trouble = appendData(type, data)) return trouble;
  line_ += kLineEnd;
  return emit();
}

void RegTextWriter::endKey() {
  line_ = kLineEnd;
  emit();
}

const char* RegTextWriter::deleteKey(std::string_view fullName) {
  if (holdsLineBreak(fullName)) return kLineBreakInName;
  line_.assign("[-").append(fullName).append("]").append(kLineEnd);
  return emit();
}

const char* RegTextWriter::deleteValue(std::string_view name) {
  if (const char* trouble = beginValue(name)) return trouble;
  line_.append("-").append(kLineEnd);
  return emit();
}

const char* RegTextWriter::appendData(RegType type, std::string_view data) {
  if (type == REG_SZ && fitsQuotes(data)) {
    appendQuoted(data.substr(0, data.size() - 1), line_);
  } else if (type == REG_DWORD && data.size() == 4) {
    appendDword(data, line_);
  } else if (isText(type)) {
    scratch_.clear();
    if (!isWellFormed(withoutOddByte(data))) return kNoText;
    if (!textBytes(data, scratch_)) return kNotInCodePage;
    appendHex(type, scratch_);
  } else {
    appendHex(type, data);
  }
  return nullptr;
}

void RegTextWriter::appendHex(RegType type, std::string_view data) {
  if (type == REG_BINARY) {
    line_ += "hex:";
  } else {
    line_ += "hex(";
    appendNumber(type, line_);
    line_ += "):";
  }
  appendHexText(data, asciiPrefix(line_) == line_.size() ? line_.size() : characterCount(line_),
                line_);
}

bool RegTextWriter::textBytes(std::string_view text, std::string& bytes) const {
  if (format_ == RegFormat::Regedit4) return codePage_.appendEncoded(text, bytes);
  appendUtf16le(text, bytes);
  return true;
}

// Appends line_ in the file's encoding; else tells why that cannot hold it.
const char* RegTextWriter::emit() {
  if (!isWellFormed(line_)) return kNoText;
  return textBytes(line_, bytes_) ? nullptr : kNotInCodePage;
}

}  // namespace korvex::platform
