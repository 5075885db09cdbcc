// Reading and editing the text of an initialisation file.
#include "platform/common/ini_document.h"

#include <algorithm>

namespace korvex::platform {
namespace {

constexpr std::string_view kBlanks = " \t\r\f\v";
constexpr char kCtrlZ = '\x1A';

enum class Kind { Blank, Comment, Section, Key, Other };

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// The end of the text proper: a Ctrl-Z that nothing but blanks follows stays behind it.
std::size_t textEnd(std::string_view bytes) {
  std::size_t end = bytes.size();
  for (std::size_t i = bytes.size(); i-- > 0;) {
    if (bytes[i] == kCtrlZ) {
      end = i;
    } else if (bytes[i] != '\n' && kBlanks.find(bytes[i]) == std::string_view::npos) {
      break;
    }
  }
  return end;
}

bool breaksLine(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\x1A\0", 4)) != std::string_view::npos;
}

bool isGoodSection(std::string_view name) {
  return !breaksLine(name) && !trimmed(name).empty() && name.find(']') == std::string_view::npos;
}

bool isGoodKey(std::string_view name) {
  name = trimmed(name);
  return !breaksLine(name) && !name.empty() && name.find('=') == std::string_view::npos &&
         name.front() != ';' && name.front() != '[';
}

}  // namespace

// One line, by its place in the bytes; name and value as they stand there, without blanks around.
struct IniDocument::Line {
  Kind kind = Kind::Other;
  std::size_t begin = 0;
  std::size_t end = 0;   // before the line end
  std::size_t next = 0;  // behind it
  std::string_view name;
  std::string_view value;

  explicit Line(std::string_view content) : name(trimmed(content)) {
    if (name.empty()) {
      kind = Kind::Blank;
    } else if (name.front() == ';') {
      kind = Kind::Comment;
    } else if (name.front() == '[' && name.find(']') != std::string_view::npos) {
      kind = Kind::Section;
      name = trimmed(name.substr(1, name.find(']') - 1));
    } else if (const std::size_t equals = name.find('='); equals != std::string_view::npos) {
      const std::string_view key = trimmed(name.substr(0, equals));
      if (key.empty()) return;
      kind = Kind::Key;
      value = trimmed(name.substr(equals + 1));
      name = key;
    }
  }
};

std::vector<IniDocument::Line> IniDocument::parse() const {
  const std::string_view text = std::string_view(bytes_).substr(0, textEnd(bytes_));
  std::vector<Line> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t next = std::min(text.find('\n', at), text.size() - 1) + 1;
    std::size_t end = next;
    while (end > at && (text[end - 1] == '\n' || text[end - 1] == '\r')) --end;
    Line line(text.substr(at, end - at));
    line.begin = at;
    line.end = end;
    line.next = next;
    lines.push_back(line);
    at = next;
  }
  return lines;
}

std::string IniDocument::decode(std::string_view bytes) const {
  return codePage_ == nullptr ? std::string(bytes) : codePage_->decode(bytes);
}

Status IniDocument::encode(std::string_view text, std::string& bytes) const {
  if (codePage_ != nullptr) {
    return codePage_->encode(text, bytes) ? ERROR_SUCCESS : ERROR_NO_UNICODE_TRANSLATION;
  }
  bytes = text;
  return ERROR_SUCCESS;
}

Status IniDocument::encodeLine(std::string_view key, std::string_view value,
                               std::string& line) const {
  if (!isGoodKey(key) || breaksLine(value)) return ERROR_INVALID_PARAMETER;
  return encode(std::string(trimmed(key)) + "=" + std::string(value), line);
}

bool IniDocument::isNamed(const Line& line, std::string_view folded) const {
  return foldName(decode(line.name)) == folded;
}

std::string_view IniDocument::lineEnd() const {
  const std::size_t first = bytes_.find('\n');
  const bool alone = first != std::string::npos && (first == 0 || bytes_[first - 1] != '\r');
  return alone ? "\n" : "\r\n";
}

std::vector<IniDocument::Line> IniDocument::sectionLines(std::string_view section) const {
  const std::vector<Line> lines = parse();
  const std::string folded = foldName(trimmed(section));
  const auto isHeading = [](const Line& line) { return line.kind == Kind::Section; };
  const auto first = std::find_if(lines.begin(), lines.end(), [&](const Line& line) {
    return isHeading(line) && isNamed(line, folded);
  });
  if (first == lines.end()) return {};
  return {first, std::find_if(first + 1, lines.end(), isHeading)};
}

std::vector<IniDocument::Line> IniDocument::keyLines(std::string_view section,
                                                     std::string_view key) const {
  std::vector<Line> lines = sectionLines(section);
  const std::string folded = foldName(trimmed(key));
  std::erase_if(lines,
                [&](const Line& line) { return line.kind != Kind::Key || !isNamed(line, folded); });
  return lines;
}

std::vector<std::string> IniDocument::sections() const {
  std::vector<std::string> names;
  std::vector<std::string> seen;  // folded
  for (const Line& line : parse()) {
    if (line.kind != Kind::Section) continue;
    const std::string name = decode(line.name);
    const std::string folded = foldName(name);
    if (std::find(seen.begin(), seen.end(), folded) != seen.end()) continue;
    seen.push_back(folded);
    names.push_back(name);
  }
  return names;
}

std::vector<std::string> IniDocument::keys(std::string_view section) const {
  std::vector<std::string> names;
  for (const Line& line : sectionLines(section)) {
    if (line.kind == Kind::Key) names.push_back(decode(line.name));
  }
  return names;
}

std::vector<std::string> IniDocument::lines(std::string_view section) const {
  std::vector<std::string> result;
  for (const Line& line : sectionLines(section)) {
    if (line.kind == Kind::Key) {
      result.push_back(decode(line.name) + "=" + decode(line.value));
    } else if (line.kind == Kind::Other) {
      result.push_back(decode(line.name));
    }
  }
  return result;
}

std::vector<std::string> IniDocument::values(std::string_view section, std::string_view key) const {
  std::vector<std::string> result;
  for (const Line& line : keyLines(section, key)) result.push_back(decode(line.value));
  return result;
}

std::optional<std::string> IniDocument::value(std::string_view section,
                                              std::string_view key) const {
  const std::vector<Line> lines = keyLines(section, key);
  if (lines.empty()) return std::nullopt;
  return decode(lines.front().value);
}

Status IniDocument::set(std::string_view section, std::string_view key, std::string_view value) {
  return keyLines(section, key).empty() ? add(section, key, value) : setAt(section, key, 0, value);
}

Status IniDocument::setAt(std::string_view section, std::string_view key, std::size_t n,
                          std::string_view value) {
  std::string encoded;
  if (breaksLine(value)) return ERROR_INVALID_PARAMETER;
  const Status status = encode(value, encoded);
  if (status != ERROR_SUCCESS) return status;
  const std::vector<Line> lines = keyLines(section, key);
  if (n >= lines.size()) return ERROR_FILE_NOT_FOUND;
  const Line& line = lines[n];
  // The key and what stands around its '=' stay as they are.
  const std::size_t equals = bytes_.find('=', line.begin);
  const std::size_t begin = std::min(bytes_.find_first_not_of(kBlanks, equals + 1), line.end);
  bytes_.replace(begin, line.end - begin, encoded);
  return ERROR_SUCCESS;
}

Status IniDocument::add(std::string_view section, std::string_view key, std::string_view value) {
  std::string text;
  std::string heading;
  if (!isGoodSection(section)) return ERROR_INVALID_PARAMETER;
  Status status = encodeLine(key, value, text);
  if (status == ERROR_SUCCESS) status = encode(trimmed(section), heading);
  if (status != ERROR_SUCCESS) return status;

  const std::string end(lineEnd());
  std::vector<Line> lines = keyLines(section, key);
  if (lines.empty()) lines = sectionLines(section);
  // The blank lines behind a section set off the next one.
  while (!lines.empty() && lines.back().kind == Kind::Blank) lines.pop_back();
  if (!lines.empty()) {
    const Line& last = lines.back();
    const bool ended = last.next > last.end;
    bytes_.insert(last.next, (ended ? "" : end) + text + end);
    return ERROR_SUCCESS;
  }
  const std::vector<Line> all = parse();
  std::string added;
  if (!all.empty() && all.back().next == all.back().end) added += end;
  if (gap_ == SectionGap::BlankLine && !all.empty() && all.back().kind != Kind::Blank) added += end;
  added += "[" + heading + "]" + end + text + end;
  bytes_.insert(textEnd(bytes_), added);
  return ERROR_SUCCESS;
}

Status IniDocument::remove(std::string_view section, std::string_view key) {
  const Status status = removeAt(section, key, 0);
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

Status IniDocument::removeAt(std::string_view section, std::string_view key, std::size_t n) {
  const std::vector<Line> lines = keyLines(section, key);
  if (n >= lines.size()) return ERROR_FILE_NOT_FOUND;
  bytes_.erase(lines[n].begin, lines[n].next - lines[n].begin);
  return ERROR_SUCCESS;
}

Status IniDocument::removeSection(std::string_view section) {
  const std::vector<Line> lines = sectionLines(section);
  if (lines.empty()) return ERROR_SUCCESS;
  bytes_.erase(lines.front().begin, lines.back().next - lines.front().begin);
  return ERROR_SUCCESS;
}

}  // namespace korvex::platform
