// The lines of Wine's registry text, read as Wine reads them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/hives/hive_file.h"

namespace korvex::platform {

// A line with its end; a value with all lines that its bytes go on in.
struct WineRecord {
  enum class Kind {
    Blank,
    Header,  // "[path] time"
    Option,  // "#time=...", "#link", ...
    Value,   // value.name is its name
    Other,   // comments, and what Wine passes over
  };
  Kind kind = Kind::Other;
  std::string_view bytes;
  std::string_view line;  // the first line, without its end
  // Of a value. Wine makes the value that it cannot read an empty one.
  bool isReadable = false;
  HiveValue value;
  std::size_t prefix = 0;  // the length of the line up to "=", included
  // The text ends where the value's bytes ought to go on.
  bool isCutOff = false;
};

class WineLines {
 public:
  explicit WineLines(std::string_view text) : text_(text) {}

  // The next record; false at the end. Without a key before it (inKey), a value is Other.
  bool next(bool inKey, WineRecord& record);
  // Where the next record begins.
  std::size_t position() const { return at_; }

 private:
  bool nextLine(std::string_view& line);
  void readValue(std::size_t at, WineRecord& record);
  bool readData(std::size_t at, WineRecord& record);
  bool readBytes(std::string_view line, std::size_t at, WineRecord& record);

  std::string_view text_;
  std::size_t at_ = 0;
};

// The path of a header line without its escapes; at is moved past the "]". False where none comes.
bool readWinePath(std::string_view line, std::size_t& at, std::string& path);

// A value's line or lines from "=" on; column is what stands before.
void appendWineData(const HiveValue& value, std::size_t column, std::string& out);
// The name in quotes, or "@", and "=".
void appendWineName(std::string_view name, std::string& out);

std::size_t skipWineBlanks(std::string_view line, std::size_t at);

}  // namespace korvex::platform
