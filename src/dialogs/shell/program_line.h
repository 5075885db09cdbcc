// ProgramLine: the text of WIN.INI's lines load= and run=, cut into programs as Windows reads it.
//
// Names stand apart by blanks or commas; one with blanks stands in quotes. Words that begin with
// '/' or '-' belong to the program before them, unless a comma stands between. What is no name (a
// quote without its end, with all behind it) is none of the programs and stays where it is; so do
// the separators that a change does not concern.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace korvex::dialogs {

class ProgramLine {
 public:
  explicit ProgramLine(std::string text);

  const std::string& text() const { return text_; }
  // As they are written, quotes and switches too, in their order.
  std::vector<std::string> programs() const;
  int count(std::string_view written) const;

  // Cuts out the n-th (from 0) that is written so, with the separators behind it, or those before
  // it where nothing follows. False where there is none.
  bool remove(std::string_view written, int n = 0);
  // Puts it behind the others, after a blank.
  void add(std::string_view written);

 private:
  struct Piece {
    std::size_t begin;
    std::size_t end;
  };
  void cutUp();
  bool addsSwitch(const Piece& word) const;

  std::string text_;
  std::vector<Piece> pieces_;
  bool openQuote_ = false;
};

// Without its quotes.
std::string plainProgram(std::string_view written);
// The path as it must stand on such a line.
std::string quotedForLine(const std::string& path);

}  // namespace korvex::dialogs
