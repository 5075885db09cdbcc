// Text at the edge of a machine: case folding, UTF-16 and code pages.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace korvex::platform {

// Upper-cased by Unicode's simple pairs, code point by code point, as Windows compares names.
// Locale-independent; bytes that are no UTF-8 stay as they are.
std::string foldName(std::string_view name);
bool sameName(std::string_view left, std::string_view right);
// Length in UTF-16 units: what Windows counts as characters.
std::size_t characterCount(std::string_view text);

// Both ways lossless, with the two extensions that platform/registry.h tells: lone surrogates as
// three bytes, and a last odd byte of the UTF-16 data as 0xFF and that byte.
std::string utf16leToUtf8(std::string_view bytes);
std::string utf8ToUtf16le(std::string_view text);

// A single-byte Windows or DOS code page. The five bytes that 1252 leaves undefined stand for the
// C1 controls of the same number, as Windows maps them.
class CodePage {
 public:
  // 1250 to 1258, 437, 850, 852, 866. Null for a number that is not known.
  static const CodePage* find(int number);

  int number() const { return number_; }
  std::string decode(std::string_view bytes) const;
  // False where a character has no place in the code page; bytes is then what it was.
  bool encode(std::string_view text, std::string& bytes) const;

 private:
  explicit CodePage(int number);

  int number_;
  char32_t toUnicode_[256] = {};
};

}  // namespace korvex::platform
