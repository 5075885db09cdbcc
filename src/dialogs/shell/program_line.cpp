// Cutting, removing and adding.
#include "dialogs/shell/program_line.h"

#include <algorithm>
#include <utility>

namespace korvex::dialogs {
namespace {

constexpr std::string_view kSeparators = " \t,";

bool separates(char c) { return kSeparators.find(c) != std::string_view::npos; }

}  // namespace

ProgramLine::ProgramLine(std::string text) : text_(std::move(text)) { cutUp(); }

bool ProgramLine::addsSwitch(const Piece& word) const {
  if (pieces_.empty() || (text_[word.begin] != '/' && text_[word.begin] != '-')) return false;
  const std::string_view gap(text_.data() + pieces_.back().end, word.begin - pieces_.back().end);
  return gap.find_first_not_of(" \t") == std::string_view::npos;
}

void ProgramLine::cutUp() {
  pieces_.clear();
  openQuote_ = false;
  for (std::size_t at = 0; at < text_.size();) {
    if (separates(text_[at])) {
      ++at;
      continue;
    }
    Piece word{at, at};
    bool quoted = false;
    for (; at < text_.size() && (quoted || !separates(text_[at])); ++at) {
      if (text_[at] == '"') quoted = !quoted;
    }
    word.end = at;
    openQuote_ = quoted;
    if (quoted) return;
    if (addsSwitch(word)) {
      pieces_.back().end = word.end;
    } else if (!plainProgram(text_.substr(word.begin, word.end - word.begin)).empty()) {
      pieces_.push_back(word);
    }
  }
}

std::vector<std::string> ProgramLine::programs() const {
  std::vector<std::string> result;
  for (const Piece& piece : pieces_) {
    result.push_back(text_.substr(piece.begin, piece.end - piece.begin));
  }
  return result;
}

int ProgramLine::count(std::string_view written) const {
  return static_cast<int>(std::ranges::count(programs(), written));
}

bool ProgramLine::remove(std::string_view written, int n) {
  const std::vector<std::string> all = programs();
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (all[i] != written || n-- > 0) continue;
    auto [begin, end] = pieces_[i];
    const std::size_t next = text_.find_first_not_of(kSeparators, end);
    if (next != std::string::npos) {
      end = next;
    } else {
      while (begin > 0 && separates(text_[begin - 1])) --begin;
    }
    text_.erase(begin, end - begin);
    cutUp();
    return true;
  }
  return false;
}

void ProgramLine::add(std::string_view written) {
  if (text_.find_first_not_of(" \t") == std::string::npos) {
    text_ = written;
  } else if (openQuote_) {
    // Behind an open quote it would be no name.
    text_ = std::string(written) + ' ' + text_;
  } else {
    text_ += ' ';
    text_ += written;
  }
  cutUp();
}

std::string plainProgram(std::string_view written) {
  std::string plain(written);
  std::erase(plain, '"');
  return plain;
}

std::string quotedForLine(const std::string& path) {
  return path.find_first_of(kSeparators) == std::string::npos ? path : '"' + path + '"';
}

}  // namespace korvex::dialogs
