// MSDOS.SYS of Windows 95, 98 and Me: the file that the start of Windows reads its options from.
//
// Every line stays as it is, its bytes, order and line ends, but the value of an option that is
// set. The file must be larger than 1,024 bytes, or some programs take it for an infected one: a
// smaller one gets further comment lines.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvex::main_window {

class MsdosSys {
 public:
  explicit MsdosSys(std::string_view bytes);

  // Of [Options] unless another section is named; names without regard to case; of several lines
  // the last one counts, as it does at the start of Windows.
  std::optional<std::string> value(std::string_view name,
                                   std::string_view section = "Options") const;
  // In the line that counts, or in a new one at the end of the options.
  void set(std::string_view name, std::string_view value);

  std::string bytes() const;

 private:
  struct Line {
    std::string text;
    std::string end;  // "\r\n", "\n", or "" at the end of the file
  };
  // The index of the line; that of no line where there is none.
  std::size_t find(std::string_view name, std::string_view section) const;
  std::size_t endOfOptions();

  std::vector<Line> lines_;
};

}  // namespace korvex::main_window
