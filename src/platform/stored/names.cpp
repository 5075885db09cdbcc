// Comparing and checking names.
#include "platform/stored/names.h"

#include <cstdint>
#include <cstring>

namespace korvex::platform {
namespace {

char upperAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// One character of UTF-8 with lone surrogates; 0 where the bytes are none. A pair of surrogates in
// three bytes each is none either: it has its own form in four bytes.
std::size_t characterBytes(std::string_view text, bool afterHighSurrogate, bool& highSurrogate) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const auto follows = [&](std::size_t i) { return i < text.size() && (byte(i) & 0xC0) == 0x80; };
  highSurrogate = false;
  const unsigned char first = byte(0);
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return follows(1) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    if (!follows(1) || !follows(2) || (first == 0xE0 && byte(1) < 0xA0)) return 0;
    highSurrogate = first == 0xED && byte(1) >= 0xA0 && byte(1) < 0xB0;
    const bool lowSurrogate = first == 0xED && byte(1) >= 0xB0;
    return afterHighSurrogate && lowSurrogate ? 0 : 3;
  }
  if (first < 0xF0 || first > 0xF4 || !follows(1) || !follows(2) || !follows(3)) return 0;
  const bool inRange = !(first == 0xF0 && byte(1) < 0x90) && !(first == 0xF4 && byte(1) > 0x8F);
  return inRange ? 4 : 0;
}

bool isText(std::string_view text) {
  // The last odd byte of a UTF-16 value stands as 0xFF and that byte.
  if (text.size() >= 2 && text[text.size() - 2] == '\xFF') text.remove_suffix(2);
  bool afterHighSurrogate = false;
  while (!text.empty()) {
    bool highSurrogate = false;
    const std::size_t bytes = characterBytes(text, afterHighSurrogate, highSurrogate);
    if (bytes == 0) return false;
    afterHighSurrogate = highSurrogate;
    text.remove_prefix(bytes);
  }
  return true;
}

}  // namespace

bool isAscii(std::string_view text) {
  std::size_t at = 0;
  for (; at + 8 <= text.size(); at += 8) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data() + at, 8);
    if ((word & 0x8080808080808080U) != 0) return false;
  }
  for (; at < text.size(); ++at) {
    if (static_cast<unsigned char>(text[at]) >= 0x80) return false;
  }
  return true;
}

bool namesMatch(std::string_view left, std::string_view right) {
  if (left == right) return true;
  if (left.size() == right.size()) {
    std::size_t at = 0;
    while (at < left.size() && upperAscii(left[at]) == upperAscii(right[at])) ++at;
    if (at == left.size()) return true;
  }
  // Names of different bytes may fold alike, but not where both are plain ASCII.
  return (!isAscii(left) || !isAscii(right)) && sameName(left, right);
}

void foldInto(std::string_view name, std::string& folded) {
  if (!isAscii(name)) {
    folded = foldName(name);
    return;
  }
  folded.resize(name.size());
  for (std::size_t i = 0; i < name.size(); ++i) folded[i] = upperAscii(name[i]);
}

bool TextRules::holds(std::string_view text) const {
  if (isAscii(text)) return true;
  if (codePage_ == nullptr) return isText(text);
  std::string ignored;
  return codePage_->encode(text, ignored);
}

Status TextRules::checkName(std::string_view name) const {
  if (name.size() > kMaxNameCharacters && characterCount(name) > kMaxNameCharacters) {
    return ERROR_FILENAME_EXCED_RANGE;
  }
  if (name.find('\0') != std::string_view::npos) return ERROR_INVALID_PARAMETER;
  return holds(name) ? ERROR_SUCCESS : ERROR_NO_UNICODE_TRANSLATION;
}

Status TextRules::checkData(RegType type, std::string_view data) const {
  const bool isText = type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
  return !isText || holds(data) ? ERROR_SUCCESS : ERROR_NO_UNICODE_TRANSLATION;
}

}  // namespace korvex::platform
