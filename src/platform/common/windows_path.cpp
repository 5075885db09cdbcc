// Taking Windows paths apart, and Windows' wildcards.
#include "platform/common/windows_path.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"

namespace korvex::platform {
namespace {

constexpr std::size_t kMaxPathCharacters = 259;  // MAX_PATH less the terminating zero

bool isSeparator(char c) { return c == '\\' || c == '/'; }

bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// Length of the UTF-8 sequence at the start of text, 0 where there is none. Surrogates and overlong
// forms are none: the host would hold names that Windows cannot spell.
std::size_t sequenceLength(std::string_view text) {
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
  }
  const unsigned char second = byte(1);
  const bool wrong = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                     (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
  return wrong ? 0 : length;
}

// No control characters, none of Windows' forbidden ones but those in allowed, and all of it UTF-8.
bool hasOnlyNameCharacters(std::string_view name, std::string_view allowed) {
  constexpr std::string_view kForbidden = "<>:\"|?*\\/";
  while (!name.empty()) {
    const char c = name.front();
    if (static_cast<unsigned char>(c) < 0x20) return false;
    if (kForbidden.find(c) != std::string_view::npos && allowed.find(c) == std::string_view::npos) {
      return false;
    }
    const std::size_t length = sequenceLength(name);
    if (length == 0) return false;
    name.remove_prefix(length);
  }
  return true;
}

std::string_view withoutTrailing(std::string_view text, std::string_view characters) {
  const std::size_t last = text.find_last_not_of(characters);
  return last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1);
}

// Adds one part as it was written to what has been read so far.
Status addPart(std::string_view part, std::vector<std::string>& parts) {
  if (part.empty() || part == ".") return ERROR_SUCCESS;
  if (part == "..") {
    if (parts.empty()) return ERROR_BAD_PATHNAME;
    parts.pop_back();
    return ERROR_SUCCESS;
  }
  const std::string_view name = withoutTrailing(part, ". ");
  // "..." and ".. " mean one thing on Windows 95 and another on NT.
  if (!isWindowsName(name)) return ERROR_INVALID_NAME;
  parts.emplace_back(name);
  return ERROR_SUCCESS;
}

Status checkLength(const WindowsPath& folder, std::string_view name) {
  const std::string text = formatWindowsPath(folder);
  const std::size_t separator = name.empty() || folder.parts.empty() ? 0 : 1;
  return characterCount(text) + separator + characterCount(name) > kMaxPathCharacters
             ? ERROR_FILENAME_EXCED_RANGE
             : ERROR_SUCCESS;
}

// Without the check of the length, which depends on what is added to it.
Status parse(std::string_view text, WindowsPath& path) {
  if (text.size() < 3 || !isLetter(text[0]) || text[1] != ':' || !isSeparator(text[2])) {
    return ERROR_BAD_PATHNAME;
  }
  path = WindowsPath{};
  path.drive = upper(text[0]);
  path.trailingSeparator = text.size() > 3 && isSeparator(text.back());
  text.remove_prefix(3);
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\\/"), text.size());
    const Status status = addPart(text.substr(0, end), path.parts);
    if (status != ERROR_SUCCESS) return status;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return ERROR_SUCCESS;
}

// One character (code point) of a folded name.
std::vector<std::string_view> charactersOf(std::string_view text) {
  std::vector<std::string_view> characters;
  while (!text.empty()) {
    const std::size_t length = std::max<std::size_t>(sequenceLength(text), 1);
    characters.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return characters;
}

// '?' also stands for nothing at the end of a name or before a dot. A dot that only wildcards
// follow also stands for nothing at the end of a name, unless a star before it has eaten the
// extension: "*.?" does not match "a.txt".
class WildcardMatcher {
 public:
  WildcardMatcher(std::string_view pattern, std::string_view name)
      : pattern_(charactersOf(pattern)), name_(charactersOf(name)) {
    const auto dot = std::find(name_.rbegin(), name_.rend(), ".");
    lastDot_ = static_cast<std::size_t>(name_.rend() - dot);  // its index + 1, or 0
    const auto open = std::find_if(pattern_.rbegin(), pattern_.rend(), [](std::string_view c) {
      return c != "*" && c != "?" && c != ".";
    });
    onlyWildcardsFrom_ = static_cast<std::size_t>(pattern_.rend() - open);
    failed_.resize((pattern_.size() + 1) * (name_.size() + 1) * 2);
  }

  bool matches() { return matches(0, 0, false); }

 private:
  bool matches(std::size_t p, std::size_t n, bool dotEaten) {
    if (p == pattern_.size()) return n == name_.size();
    const std::size_t state = ((p * (name_.size() + 1)) + n) * 2 + (dotEaten ? 1 : 0);
    if (failed_[state]) return false;
    const bool result = step(p, n, dotEaten);
    failed_[state] = !result;
    return result;
  }

  bool step(std::size_t p, std::size_t n, bool dotEaten) {
    const bool atEnd = n == name_.size();
    if (pattern_[p] == "*") {
      if (matches(p + 1, n, dotEaten)) return true;
      return !atEnd && matches(p, n + 1, dotEaten || n + 1 == lastDot_);
    }
    if (pattern_[p] == "?") {
      if (atEnd || name_[n] == ".") return matches(p + 1, n, dotEaten);
      return matches(p + 1, n + 1, dotEaten);
    }
    if (atEnd) {
      return pattern_[p] == "." && p >= onlyWildcardsFrom_ && !dotEaten &&
             matches(p + 1, n, dotEaten);
    }
    return pattern_[p] == name_[n] && matches(p + 1, n + 1, dotEaten);
  }

  std::vector<std::string_view> pattern_;
  std::vector<std::string_view> name_;
  std::size_t lastDot_ = 0;
  std::size_t onlyWildcardsFrom_ = 0;
  std::vector<bool> failed_;  // what need not be tried again
};

}  // namespace

bool isDeviceName(std::string_view name) {
  const std::string_view base = withoutTrailing(name.substr(0, name.find_first_of(".:")), " ");
  std::string folded(base);
  std::transform(folded.begin(), folded.end(), folded.begin(), upper);
  constexpr std::array<std::string_view, 8> kDevices = {"CON",    "PRN",    "AUX",     "NUL",
                                                        "CLOCK$", "CONIN$", "CONOUT$", "CONFIG$"};
  if (std::find(kDevices.begin(), kDevices.end(), folded) != kDevices.end()) return true;
  if (!folded.starts_with("COM") && !folded.starts_with("LPT")) return false;
  // NT takes the raised digits for digits.
  constexpr std::array<std::string_view, 12> kDigits = {"1", "2", "3", "4", "5", "6",
                                                        "7", "8", "9", "¹", "²", "³"};
  return std::find(kDigits.begin(), kDigits.end(), std::string_view(folded).substr(3)) !=
         kDigits.end();
}

bool isWindowsName(std::string_view name) {
  return !name.empty() && name.back() != '.' && name.back() != ' ' &&
         hasOnlyNameCharacters(name, "") && !isDeviceName(name);
}

std::string formatWindowsPath(const WindowsPath& path) {
  std::string text = {path.drive, ':'};
  for (const std::string& part : path.parts) text += '\\' + part;
  if (path.parts.empty() || path.trailingSeparator) text += '\\';
  return text;
}

Status parseWindowsPath(std::string_view text, WindowsPath& path) {
  const Status status = parse(text, path);
  return status == ERROR_SUCCESS ? checkLength(path, "") : status;
}

Status parseWindowsPattern(std::string_view text, WindowsPath& folder, std::string& pattern) {
  const std::size_t start = text.find_last_of("\\/") + 1;
  Status status = parse(text.substr(0, start), folder);
  if (status != ERROR_SUCCESS) return status;
  folder.trailingSeparator = false;
  const std::string_view last = text.substr(start);
  if (last.find_first_of("*?") == std::string_view::npos) {
    std::vector<std::string> parts;
    if (last == "..") return ERROR_INVALID_NAME;
    status = addPart(last, parts);
    if (status != ERROR_SUCCESS) return status;
    pattern = parts.empty() ? std::string() : parts.front();
  } else {
    if (!hasOnlyNameCharacters(last, "*?")) return ERROR_INVALID_NAME;
    pattern = withoutTrailing(last, " ");
  }
  return checkLength(folder, pattern);
}

bool matchesWildcards(std::string_view pattern, std::string_view name) {
  if (pattern == "*.*") return true;
  if (pattern.size() > 1 && pattern.back() == '.') {
    return name.find('.') == std::string_view::npos &&
           matchesWildcards(pattern.substr(0, pattern.size() - 1), name);
  }
  return WildcardMatcher(foldName(pattern), foldName(name)).matches();
}

}  // namespace korvex::platform
