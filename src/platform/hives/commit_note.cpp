// The note as text: a line for each file, and a check sum of them all.
#include "platform/hives/commit_note.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "platform/common/whole_file.h"

namespace korvex::platform {
namespace {

constexpr std::string_view kHead = "korvex commit 1\n";
constexpr std::string_view kEnd = "end ";
constexpr std::size_t kDigits = 16;

bool isLowerHex(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

bool isPlain(char c) { return c > ' ' && c < 0x7f && c != '%'; }

std::string escaped(std::string_view path) {
  std::string text;
  for (const char c : path) {
    if (isPlain(c)) {
      text += c;
    } else {
      text += fmt::format("%{:02x}", static_cast<unsigned char>(c));
    }
  }
  return text;
}

bool unescape(std::string_view text, std::string& path) {
  path.clear();
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      path += text[at];
      continue;
    }
    unsigned byte = 0;
    const std::string_view digits = text.substr(at + 1, 2);
    if (digits.size() != 2 || !std::all_of(digits.begin(), digits.end(), isLowerHex)) return false;
    std::from_chars(digits.data(), digits.data() + 2, byte, 16);
    path += static_cast<char>(byte);
    at += 2;
  }
  return true;
}

std::string encodeStamp(const LastingStamp& stamp) {
  return fmt::format("{} {} {} {} {}", stamp.exists ? 1 : 0, stamp.number, stamp.size,
                     stamp.seconds, stamp.nanoseconds);
}

// FNV-1a: against damage, not against malice, which the names and the walk are checked for.
std::string checkSum(std::string_view text) {
  std::uint64_t sum = 0xcbf29ce484222325U;
  for (const char c : text) sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
  return fmt::format("{:016x}", sum);
}

// Takes the part before the separator off text; all of it where there is none.
std::string_view takePart(std::string_view& text, char separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view part = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return part;
}

template <typename Number>
bool takeNumber(std::string_view& line, Number& number) {
  const std::string_view part = takePart(line, ' ');
  const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), number);
  return error == std::errc{} && end == part.data() + part.size();
}

bool takeStamp(std::string_view& line, LastingStamp& stamp) {
  int exists = 0;
  if (!takeNumber(line, exists) || !takeNumber(line, stamp.number) ||
      !takeNumber(line, stamp.size) || !takeNumber(line, stamp.seconds) ||
      !takeNumber(line, stamp.nanoseconds)) {
    return false;
  }
  stamp.exists = exists == 1;
  return true;
}

bool leadsDown(std::string_view path) {
  if (path.empty() || path.front() == '/' || path.back() == '/') return false;
  if (path.find('\0') != std::string_view::npos) return false;
  while (!path.empty()) {
    const std::string_view part = takePart(path, '/');
    if (part.empty() || part == "." || part == ".." || part.starts_with(kOwnFilePrefix)) {
      return false;
    }
  }
  return true;
}

bool parseLine(std::string_view line, NotedFile& file) {
  const std::string_view path = takePart(line, ' ');
  file.newName = takePart(line, ' ');
  return unescape(path, file.path) && leadsDown(file.path) && isNewVersionName(file.newName) &&
         takeStamp(line, file.before) && takeStamp(line, file.after) && file.after.exists &&
         line.empty();
}

}  // namespace

bool isNewVersionName(std::string_view name) {
  if (!name.starts_with(kOwnFilePrefix)) return false;
  name.remove_prefix(kOwnFilePrefix.size());
  if (!name.starts_with(kNewVersionStem)) return false;
  name.remove_prefix(kNewVersionStem.size());
  return name.size() == kDigits && std::all_of(name.begin(), name.end(), isLowerHex);
}

std::string encodeNote(const std::vector<NotedFile>& files) {
  std::string text(kHead);
  for (const NotedFile& file : files) {
    text += fmt::format("{} {} {} {}\n", escaped(file.path), file.newName, encodeStamp(file.before),
                        encodeStamp(file.after));
  }
  return text + std::string(kEnd) + checkSum(text) + "\n";
}

bool parseNote(std::string_view text, std::vector<NotedFile>& files) {
  files.clear();
  const std::size_t end = text.rfind(kEnd);
  if (!text.starts_with(kHead) || end == std::string_view::npos) return false;
  if (text.substr(end) != std::string(kEnd) + checkSum(text.substr(0, end)) + "\n") return false;
  std::string_view lines = text.substr(0, end);
  lines.remove_prefix(kHead.size());
  while (!lines.empty()) {
    NotedFile file;
    if (!parseLine(takePart(lines, '\n'), file)) {
      files.clear();
      return false;
    }
    files.push_back(std::move(file));
  }
  return !files.empty();
}

}  // namespace korvex::platform
