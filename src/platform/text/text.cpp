// Case folding, UTF-8 <-> UTF-16 and code pages, with short ways for ASCII.
#include "platform/text/text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/text/text_tables.h"

namespace korvex::platform {
namespace {

constexpr char32_t kNoCharacter = 0xFFFFFFFF;
constexpr char32_t kReplacement = 0xFFFD;
constexpr unsigned char kOddByteMark = 0xFF;

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void appendCodePoint(char32_t c, std::string& out) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (c >> 18));
    out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

// Takes one code point (a lone surrogate included) off position `at`; kNoCharacter, and one byte
// taken, where there is no well-formed one.
char32_t takeCodePoint(std::string_view text, std::size_t& at) {
  const auto byte = [&](std::size_t i) -> char32_t {
    return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0;
  };
  const auto follows = [&](std::size_t i) { return (byte(i) & 0xC0) == 0x80; };
  const char32_t lead = byte(0);
  if (lead < 0x80) {
    ++at;
    return lead;
  }
  if (lead >= 0xC2 && lead < 0xE0 && follows(1)) {
    const char32_t c = ((lead & 0x1F) << 6) | (byte(1) & 0x3F);
    at += 2;
    return c;
  }
  if ((lead & 0xF0) == 0xE0 && follows(1) && follows(2)) {
    const char32_t c = ((lead & 0x0F) << 12) | ((byte(1) & 0x3F) << 6) | (byte(2) & 0x3F);
    if (c >= 0x800) {
      at += 3;
      return c;
    }
  }
  if ((lead & 0xF8) == 0xF0 && follows(1) && follows(2) && follows(3)) {
    const char32_t c = ((lead & 0x07) << 18) | ((byte(1) & 0x3F) << 12) | ((byte(2) & 0x3F) << 6) |
                       (byte(3) & 0x3F);
    if (c >= 0x10000 && c < 0x110000) {
      at += 4;
      return c;
    }
  }
  ++at;
  return kNoCharacter;
}

char foldAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c; }

char32_t foldCodePoint(char32_t c) {
  if (c < 0x80) return static_cast<unsigned char>(foldAscii(static_cast<char>(c)));
  const auto run = std::upper_bound(kFoldRuns.begin(), kFoldRuns.end(), c,
                                    [](char32_t v, const FoldRun& r) { return v < r.first; });
  if (run == kFoldRuns.begin()) return c;
  const FoldRun& r = *(run - 1);
  if (c > r.last || (c - r.first) % r.step != 0) return c;
  return static_cast<char32_t>(static_cast<std::int32_t>(c) + r.delta);
}

void appendUnit(char32_t unit, std::string& out) {
  out += static_cast<char>(unit & 0xFF);
  out += static_cast<char>((unit >> 8) & 0xFF);
}

char32_t unitAt(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]) |
         (static_cast<char32_t>(static_cast<unsigned char>(bytes[at + 1])) << 8);
}

constexpr std::size_t kBlock = 32;  // characters looked at in one go; written for vector units

// Narrows whole blocks of ASCII units into out as long as they come; returns the bytes consumed.
std::size_t narrowAscii(std::string_view bytes, std::string& out) {
  const std::size_t blocks = bytes.size() / (2 * kBlock);
  if (blocks == 0) return 0;
  const std::size_t before = out.size();
  out.resize(before + blocks * kBlock);
  char* to = out.data() + before;
  const char* from = bytes.data();
  std::size_t done = 0;
  for (; done < blocks; ++done) {
    std::uint16_t units[kBlock];
    std::memcpy(units, from, sizeof units);
    std::uint16_t seen = 0;
    for (const std::uint16_t unit : units) seen |= unit;
    if (seen >= 0x80) break;
    for (std::size_t i = 0; i < kBlock; ++i) to[i] = static_cast<char>(units[i]);
    from += sizeof units;
    to += kBlock;
  }
  out.resize(before + done * kBlock);
  return done * 2 * kBlock;
}

void widenAscii(std::string_view text, std::string& out) {
  const std::size_t before = out.size();
  out.resize(before + 2 * text.size());
  char* to = out.data() + before;
  for (std::size_t i = 0; i < text.size(); ++i) {
    to[2 * i] = text[i];
    to[2 * i + 1] = 0;
  }
}

}  // namespace

std::size_t asciiPrefix(std::string_view text) {
  std::size_t at = 0;
  for (; at + kBlock <= text.size(); at += kBlock) {
    unsigned char seen = 0;
    for (std::size_t i = 0; i < kBlock; ++i) seen |= static_cast<unsigned char>(text[at + i]);
    if (seen >= 0x80) break;
  }
  while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) ++at;
  return at;
}

bool isWellFormed(std::string_view text) {
  std::size_t at = asciiPrefix(text);
  while (at < text.size()) {
    if (takeCodePoint(text, at) == kNoCharacter) return false;
  }
  return true;
}

void appendFolded(std::string_view name, std::string& out) {
  std::size_t at = asciiPrefix(name);
  const std::size_t before = out.size();
  out.resize(before + at);
  std::transform(name.begin(), name.begin() + static_cast<std::ptrdiff_t>(at),
                 out.begin() + static_cast<std::ptrdiff_t>(before), foldAscii);
  while (at < name.size()) {
    const std::size_t from = at;
    const char32_t c = takeCodePoint(name, at);
    if (c == kNoCharacter) {
      out += name[from];
    } else {
      appendCodePoint(foldCodePoint(c), out);
    }
  }
}

std::string foldName(std::string_view name) {
  std::string folded;
  appendFolded(name, folded);
  return folded;
}

bool sameName(std::string_view left, std::string_view right) {
  if (left == right) return true;
  if (asciiPrefix(left) == left.size() && asciiPrefix(right) == right.size()) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return foldAscii(a) == foldAscii(b); });
  }
  return foldName(left) == foldName(right);
}

std::size_t characterCount(std::string_view text) {
  std::size_t at = asciiPrefix(text);
  std::size_t count = at;
  while (at < text.size()) {
    const char32_t c = takeCodePoint(text, at);
    count += c >= 0x10000 && c != kNoCharacter ? 2 : 1;
  }
  return count;
}

void appendUtf8(std::string_view bytes, std::string& out) {
  const bool odd = bytes.size() % 2 != 0;
  const std::string_view units = bytes.substr(0, bytes.size() - (odd ? 1 : 0));
  std::size_t at = 0;
  while (at < units.size()) {
    at += narrowAscii(units.substr(at), out);
    const std::size_t stop = std::min(units.size(), at + 2 * kBlock);
    while (at < stop) {
      char32_t c = unitAt(units, at);
      at += 2;
      if (isHighSurrogate(c) && at < units.size() && isLowSurrogate(unitAt(units, at))) {
        c = 0x10000 + ((c - 0xD800) << 10) + (unitAt(units, at) - 0xDC00);
        at += 2;
      }
      appendCodePoint(c, out);
    }
  }
  if (odd) {
    out += static_cast<char>(kOddByteMark);
    out += bytes.back();
  }
}

void appendUtf16le(std::string_view text, std::string& out) {
  const bool odd =
      text.size() >= 2 && static_cast<unsigned char>(text[text.size() - 2]) == kOddByteMark;
  const std::string_view whole = text.substr(0, text.size() - (odd ? 2 : 0));
  std::size_t at = 0;
  while (at < whole.size()) {
    const std::size_t plain = asciiPrefix(whole.substr(at));
    widenAscii(whole.substr(at, plain), out);
    at += plain;
    while (at < whole.size() && static_cast<unsigned char>(whole[at]) >= 0x80) {
      char32_t c = takeCodePoint(whole, at);
      if (c == kNoCharacter) c = kReplacement;
      if (c >= 0x10000) {
        appendUnit(0xD800 + ((c - 0x10000) >> 10), out);
        c = 0xDC00 + ((c - 0x10000) & 0x3FF);
      }
      appendUnit(c, out);
    }
  }
  if (odd) out += text.back();
}

std::string utf16leToUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() / 2 + 2);
  appendUtf8(bytes, text);
  return text;
}

std::string utf8ToUtf16le(std::string_view text) {
  std::string bytes;
  bytes.reserve(2 * text.size());
  appendUtf16le(text, bytes);
  return bytes;
}

CodePage::CodePage(const CodePageHalf& half) : number_(half.number), upperHalf_(half.characters) {
  for (std::size_t i = 0; i < toByte_.size(); ++i) {
    toByte_[i] = {upperHalf_[i], static_cast<unsigned char>(0x80 + i)};
  }
  std::sort(toByte_.begin(), toByte_.end());
}

const CodePage* CodePage::find(int number) {
  static const std::vector<CodePage> pages = [] {
    std::vector<CodePage> all;
    all.reserve(kCodePageHalves.size());
    for (const CodePageHalf& half : kCodePageHalves) all.push_back(CodePage(half));
    return all;
  }();
  const auto page = std::find_if(pages.begin(), pages.end(),
                                 [number](const CodePage& p) { return p.number() == number; });
  return page == pages.end() ? nullptr : &*page;
}

void CodePage::appendDecoded(std::string_view bytes, std::string& out) const {
  while (!bytes.empty()) {
    const std::size_t plain = asciiPrefix(bytes);
    out.append(bytes.substr(0, plain));
    bytes.remove_prefix(plain);
    while (!bytes.empty() && static_cast<unsigned char>(bytes.front()) >= 0x80) {
      appendCodePoint(upperHalf_[static_cast<unsigned char>(bytes.front()) - 0x80], out);
      bytes.remove_prefix(1);
    }
  }
}

std::string CodePage::decode(std::string_view bytes) const {
  std::string text;
  appendDecoded(bytes, text);
  return text;
}

bool CodePage::appendEncoded(std::string_view text, std::string& out) const {
  const std::size_t before = out.size();
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t plain = asciiPrefix(text.substr(at));
    out.append(text.substr(at, plain));
    at += plain;
    while (at < text.size() && static_cast<unsigned char>(text[at]) >= 0x80) {
      const char32_t c = takeCodePoint(text, at);
      const auto place =
          std::lower_bound(toByte_.begin(), toByte_.end(), c,
                           [](const auto& entry, char32_t value) { return entry.first < value; });
      if (place == toByte_.end() || place->first != c) {
        out.resize(before);
        return false;
      }
      out += static_cast<char>(place->second);
    }
  }
  return true;
}

bool CodePage::encode(std::string_view text, std::string& bytes) const {
  std::string encoded;
  if (!appendEncoded(text, encoded)) return false;
  bytes = std::move(encoded);
  return true;
}

}  // namespace korvex::platform
