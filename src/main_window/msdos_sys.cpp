// Lines in, lines out.
#include "main_window/msdos_sys.h"

#include <fmt/format.h>

#include "engine/same_name.h"
#include "platform/trimmed.h"

namespace korvex::main_window {
namespace {

constexpr std::size_t kMustExceed = 1024;
constexpr std::size_t kPaddingWidth = 69;
constexpr std::string_view kLineEnd = "\r\n";

using platform::trimmed;

// "Options" of "[Options]"; nothing for any other line.
std::optional<std::string_view> sectionOf(std::string_view line) {
  const std::string_view text = trimmed(line);
  if (!text.starts_with('[') || !text.ends_with(']')) return std::nullopt;
  return trimmed(text.substr(1, text.size() - 2));
}

// The name of "Name=value"; "" for comments and other lines.
std::string_view nameOf(std::string_view line) {
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos || trimmed(line).starts_with(';')) return {};
  return trimmed(line.substr(0, equals));
}

}  // namespace

MsdosSys::MsdosSys(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t newLine = bytes.find('\n');
    const std::size_t next = newLine == std::string_view::npos ? bytes.size() : newLine + 1;
    std::string_view text = bytes.substr(0, newLine == std::string_view::npos ? next : newLine);
    if (text.ends_with('\r')) text.remove_suffix(1);
    lines_.push_back(
        {std::string(text), std::string(bytes.substr(text.size(), next - text.size()))});
    bytes.remove_prefix(next);
  }
}

std::size_t MsdosSys::find(std::string_view name, std::string_view section) const {
  std::size_t found = lines_.size();
  bool inside = false;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    if (const auto title = sectionOf(lines_[i].text)) inside = engine::sameName(*title, section);
    if (inside && engine::sameName(nameOf(lines_[i].text), name)) found = i;
  }
  return found;
}

std::optional<std::string> MsdosSys::value(std::string_view name, std::string_view section) const {
  const std::size_t line = find(name, section);
  if (line == lines_.size()) return std::nullopt;
  const std::string& text = lines_[line].text;
  return std::string(trimmed(std::string_view(text).substr(text.find('=') + 1)));
}

// Behind the last entry of the section: the comments that fill the file stay at its end.
std::size_t MsdosSys::endOfOptions() {
  std::size_t end = 0;
  bool inside = false;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const auto title = sectionOf(lines_[i].text);
    if (title) inside = engine::sameName(*title, "Options");
    if (inside && (title || !nameOf(lines_[i].text).empty())) end = i + 1;
  }
  if (end == 0) {
    if (!lines_.empty() && lines_.back().end.empty()) lines_.back().end = kLineEnd;
    lines_.push_back({"[Options]", std::string(kLineEnd)});
    end = lines_.size();
  }
  return end;
}

void MsdosSys::set(std::string_view name, std::string_view value) {
  const std::size_t line = find(name, "Options");
  if (line != lines_.size()) {
    std::string& text = lines_[line].text;
    text = fmt::format("{}={}", text.substr(0, text.find('=')), value);
    return;
  }
  const std::size_t place = endOfOptions();
  if (place > 0 && lines_[place - 1].end.empty()) lines_[place - 1].end = kLineEnd;
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(place),
                {fmt::format("{}={}", name, value), std::string(kLineEnd)});
}

std::string MsdosSys::bytes() const {
  std::string bytes;
  for (const Line& line : lines_) bytes += line.text + line.end;
  if (bytes.size() <= kMustExceed && !bytes.empty() && !bytes.ends_with('\n')) bytes += kLineEnd;
  for (char mark = 'a'; bytes.size() <= kMustExceed; ++mark) {
    bytes += fmt::format(";{}{}{}", std::string(kPaddingWidth, 'x'), mark, kLineEnd);
  }
  return bytes;
}

}  // namespace korvex::main_window
