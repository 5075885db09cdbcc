// A key's time stands twice: in seconds since 1970, and in tenths of a microsecond since 1601,
// which is the one that counts.
#include "platform/wine/wine_text_stamp.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdint>

#include "platform/text/reg_hex.h"
#include "platform/text/text.h"
#include "platform/wine/wine_text_lines.h"
#include "platform/wine/wine_text_strings.h"

namespace korvex::platform {

namespace {

constexpr std::string_view kTimeOption = "#time=";

struct Now {
  std::uint64_t seconds = 0;
  std::uint64_t ticks = 0;
};

Now now() {
  using namespace std::chrono;
  constexpr std::uint64_t kSecondsTo1970 = 11644473600;
  const auto passed = duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count();
  const std::uint64_t ticks = static_cast<std::uint64_t>(passed) / 100;
  return {ticks / 10000000, kSecondsTo1970 * 10000000 + ticks};
}

// As Wine writes it: both halves of the number, the lower one with all its digits.
std::string timeOption(const Now& time) {
  return fmt::format("{}{:x}{:08x}", kTimeOption, time.ticks >> 32, time.ticks & 0xFFFFFFFF);
}

// What Wine takes for the seconds is replaced; without them they are put in.
void appendStampedHeader(const WineRecord& record, const Now& time, std::string& out) {
  std::size_t end = 0;
  std::string path;
  readWinePath(record.line, end, path);
  const std::size_t digits = skipWineBlanks(record.line, end);
  std::size_t rest = digits;
  while (rest < record.line.size() && record.line[rest] >= '0' && record.line[rest] <= '9') ++rest;
  if (rest == digits) rest = end;
  out += record.line.substr(0, end);
  out += fmt::format(" {}", time.seconds);
  out += record.bytes.substr(rest);
}

}  // namespace

std::string newWineBlock(std::string_view path) {
  const Now time = now();
  std::string text = "\n[";
  appendWineString(utf8ToUtf16le(path), "[]", text);
  return text + fmt::format("] {}\n{}\n", time.seconds, timeOption(time));
}

std::string stampedWineBlock(std::string_view text) {
  const Now time = now();
  std::string option = timeOption(time);
  std::string result;
  std::size_t afterHeader = 0;
  WineLines lines(text);
  WineRecord record;
  while (lines.next(true, record)) {
    const std::size_t first = skipWineBlanks(record.line, 0);
    if (record.kind == WineRecord::Kind::Header) {
      appendStampedHeader(record, time, result);
      afterHeader = result.size();
    } else if (!option.empty() && record.kind == WineRecord::Kind::Option &&
               record.line.substr(first).starts_with(kTimeOption)) {
      std::size_t rest = first + kTimeOption.size();
      while (rest < record.line.size() && hexDigit(record.line[rest]) >= 0) ++rest;
      result += record.line.substr(0, first);
      result += option;
      result += record.bytes.substr(rest);
      option.clear();
    } else {
      result += record.bytes;
    }
  }
  if (!option.empty()) result.insert(afterHeader, option + '\n');
  return result;
}

}  // namespace korvex::platform
