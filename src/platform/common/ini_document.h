// The text of an initialisation file, edited in place: a change touches one line and keeps every
// other byte, the line ends, a missing last one and a final Ctrl-Z.
//
// The first section of a name counts, and the first key in it; ';' at the start of a line makes a
// comment. A line without '=' is no key, but is among lines(). Names and values come and go as
// UTF-8; in the bytes they stand in the code page. Refused, with the document as it was: 1113 for
// text that the code page cannot hold; 87 for what would not be read back as the same thing (a line
// end or a zero, '=' in a key, a key that looks like a comment or a section, "]" in a section, an
// empty name).
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/status.h"
#include "platform/text/text.h"

namespace korvex::platform {

enum class SectionGap { None, BlankLine };  // before a section that is added at the end

class IniDocument {
 public:
  // Without a code page the bytes are UTF-8.
  IniDocument(std::string bytes, const CodePage* codePage, SectionGap gap = SectionGap::None)
      : bytes_(std::move(bytes)), codePage_(codePage), gap_(gap) {}

  const std::string& bytes() const { return bytes_; }

  std::vector<std::string> sections() const;
  std::vector<std::string> keys(std::string_view section) const;
  std::vector<std::string> lines(std::string_view section) const;  // "key=value", no comments
  // Without the blanks around it; quotes are kept.
  std::optional<std::string> value(std::string_view section, std::string_view key) const;

  // Changes the first such key, or adds it at the end of its section, or that at the end of all.
  Status set(std::string_view section, std::string_view key, std::string_view value);
  // What is not there is no failure.
  Status remove(std::string_view section, std::string_view key);
  Status removeSection(std::string_view section);

  // For keys that stand several times, like "device" in [386Enh]: all values of the section, in
  // order; the n-th (from 0) is changed or removed, or 2. add() puts one more behind the last.
  std::vector<std::string> values(std::string_view section, std::string_view key) const;
  Status setAt(std::string_view section, std::string_view key, std::size_t n,
               std::string_view value);
  Status removeAt(std::string_view section, std::string_view key, std::size_t n);
  Status add(std::string_view section, std::string_view key, std::string_view value);

 private:
  struct Line;

  std::vector<Line> parse() const;
  // The lines between the heading of the section and the next one; with the heading itself in
  // front, so that it is empty where there is no such section.
  std::vector<Line> sectionLines(std::string_view section) const;
  std::vector<Line> keyLines(std::string_view section, std::string_view key) const;
  std::string decode(std::string_view bytes) const;
  bool isNamed(const Line& line, std::string_view folded) const;
  Status encode(std::string_view text, std::string& bytes) const;
  Status encodeLine(std::string_view key, std::string_view value, std::string& line) const;
  std::string_view lineEnd() const;

  std::string bytes_;
  const CodePage* codePage_;
  SectionGap gap_;
};

}  // namespace korvex::platform
