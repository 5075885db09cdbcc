// Text at the edge of a machine: case folding, UTF-16 and code pages.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace korvex::platform {

// Upper-cased by Unicode's simple pairs, code point by code point, as Windows compares names.
// Locale-independent; bytes that are no UTF-8 stay as they are.
std::string foldName(std::string_view name);
bool sameName(std::string_view left, std::string_view right);
// Length in UTF-16 units: what Windows counts as characters.
std::size_t characterCount(std::string_view text);

// Both ways lossless, with the two extensions that platform/registry.h tells: lone surrogates as
// three bytes, and a last odd byte of the UTF-16 data as 0xFF and that byte. Bytes that are no
// such text become U+FFFD in UTF-16.
std::string utf16leToUtf8(std::string_view bytes);
std::string utf8ToUtf16le(std::string_view text);

// The same, appended to out: for text that comes and goes in bulk.
void appendFolded(std::string_view name, std::string& out);
void appendUtf8(std::string_view utf16leBytes, std::string& out);
void appendUtf16le(std::string_view text, std::string& out);

// UTF-8 or the three-byte form of a surrogate throughout; the mark of an odd byte is not.
bool isWellFormed(std::string_view text);
// The length of the leading part of text that is plain ASCII.
std::size_t asciiPrefix(std::string_view text);

struct CodePageHalf;

// A single-byte Windows or DOS code page. The five bytes that 1252 leaves undefined stand for the
// C1 controls of the same number, as Windows maps them.
class CodePage {
 public:
  // 1250 to 1258, 437, 850, 852, 866. Null for a number that is not known.
  static const CodePage* find(int number);

  int number() const { return number_; }
  std::string decode(std::string_view bytes) const;
  void appendDecoded(std::string_view bytes, std::string& out) const;
  // False where a character has no place in the code page; bytes is then what it was.
  bool encode(std::string_view text, std::string& bytes) const;
  // The same, appended.
  bool appendEncoded(std::string_view text, std::string& out) const;

 private:
  explicit CodePage(const CodePageHalf& half);

  int number_;
  const char16_t* upperHalf_;                                   // of the bytes 80 to FF
  std::array<std::pair<char16_t, unsigned char>, 128> toByte_;  // sorted by the character
};

}  // namespace korvex::platform
