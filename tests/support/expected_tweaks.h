// What each tweak is to do, written down by hand from the documents, and the reader of those files.
//
//   # a remark
//   let $Name @where text            a part of paths and texts that differs by machine
//   [HKCU\Control Panel\Desktop]     the key of the lines that follow
//   P_rwName 58M42 without windows-nt4 bank 2 restart
//                                    the Windows (95, 98, Me, NT 4, 2000) and samples that have it;
//                                    restart? where it does not matter
//   given @where | value | data      stands on the machine before the program starts
//   answer yes                       to the question that the checked box asks
//   says ...                         beginning of the message that follows the checked box
//   refused @where ...               the click is taken back there, with a message that begins so
//   type "on" | "off"                what is typed into a field, or chosen of a list
//   on by default                    by default the box is checked, though it writes something else
//   @where | value | checked | unchecked | by default
//   @where key | there | gone | gone        the key itself; its values are not looked at
//   @where file path | "content" | folder | delete
//
// @where is a set of Windows or one sample; without it, all. Data: dword 1, "text", expand "text",
// binary 00 01, delete, kept (what a fresh machine has). A row of one value stands on the line of
// its name.
#pragma once

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvex::test {

struct ExpectedLine {
  enum class What { Value, Key, File } what = What::Value;
  std::string key;  // with its root: "HKCU\..."; of a file, its path
  std::string name;
  std::array<std::string, 3> states;  // checked, unchecked, by default
};

struct ExpectedTweak {
  std::string property;
  bool available = false;
  int bank = 0;                // 0: no box, no marker
  std::optional<bool> reboot;  // nothing: does not matter
  std::vector<ExpectedLine> lines;
  std::vector<ExpectedLine> given;  // the first state counts
  std::optional<bool> answer;
  std::string says;
  std::string refused;
  std::optional<std::array<std::string, 2>> typed;
  bool onByDefault = false;
};

class ExpectedTweaks {
 public:
  using Names = std::vector<std::pair<std::string, std::string>>;

  // All files of a folder, as they are for one sample ("windows-98"), whose letter is '8'. Of a
  // name that is given, what the files let it be does not count.
  ExpectedTweaks(const std::filesystem::path& folder, std::string sample, char letter,
                 Names names = {})
      : sample_(std::move(sample)), letter_(letter), names_(std::move(names)) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      files.push_back(entry.path());
    }
    std::ranges::sort(files);
    for (const auto& file : files) {
      std::ifstream in(file);
      int number = 0;
      for (std::string line; std::getline(in, line);) {
        ++number;
        try {
          read(line);
        } catch (const std::exception& error) {
          throw std::runtime_error(file.filename().string() + ":" + std::to_string(number) + ": " +
                                   error.what() + ": " + line);
        }
      }
      key_.clear();
    }
  }

  std::vector<ExpectedTweak> tweaks;

 private:
  static std::vector<std::string> parts(const std::string& line) {
    constexpr std::string_view kBar = " | ";
    std::vector<std::string> result;
    std::size_t from = 0;
    for (std::size_t at; (at = line.find(kBar, from)) != std::string::npos; from = at + 3) {
      result.push_back(line.substr(from, at - from));
    }
    result.push_back(line.substr(from));
    return result;
  }

  bool isHere(const std::string& where) const {
    return where.starts_with("windows-") ? where == sample_
                                         : where.find(letter_) != std::string::npos;
  }
  std::string filledIn(std::string text) const {
    for (const auto& [name, replacement] : names_) {
      for (std::size_t at; (at = text.find(name)) != std::string::npos;) {
        text.replace(at, name.size(), replacement);
      }
    }
    return text;
  }
  // Takes "@where " off the front; false where it is another machine's.
  bool takeWhere(std::string& line) const {
    if (!line.starts_with('@')) return true;
    const std::size_t end = line.find(' ');
    const bool here = isHere(line.substr(1, end - 1));
    line.erase(0, end + 1);
    return here;
  }
  static bool take(std::string& line, std::string_view word) {
    if (!line.starts_with(word)) return false;
    line.erase(0, word.size());
    return true;
  }

  void read(std::string line) {
    if (line.empty() || line.starts_with('#')) return;
    if (take(line, "let ")) return readName(line);
    if (line.starts_with('[')) {
      key_ = filledIn(line.substr(1, line.rfind(']') - 1));
      return;
    }
    if (line.starts_with("P_")) return readHead(line);
    ExpectedTweak& tweak = tweaks.at(tweaks.size() - 1);
    if (take(line, "says ")) {
      tweak.says = line;
    } else if (take(line, "answer ")) {
      tweak.answer = line == "yes";
    } else if (take(line, "refused ")) {
      if (takeWhere(line)) tweak.refused = line;
    } else if (line == "on by default") {
      tweak.onByDefault = true;
    } else if (take(line, "type ")) {
      const auto texts = parts(line);
      tweak.typed = {unquoted(texts.at(0)), unquoted(texts.at(1))};
    } else if (take(line, "given ")) {
      if (takeWhere(line)) tweak.given.push_back(lineOf(line, 1));
    } else if (takeWhere(line)) {
      tweak.lines.push_back(lineOf(line, 3));
    }
  }
  void readName(std::string line) {
    const std::size_t end = line.find(' ');
    const std::string name = line.substr(0, end);
    line.erase(0, end + 1);
    if (takeWhere(line)) names_.emplace_back(name, line);
  }
  void readHead(const std::string& line) {
    const std::size_t bar = line.find(" | ");
    std::istringstream words(line.substr(0, bar));
    ExpectedTweak tweak;
    std::string word;
    words >> tweak.property >> word;
    tweak.available = isHere(word);
    tweak.reboot = false;
    while (words >> word) {
      if (word == "bank") {
        words >> tweak.bank;
      } else if (word == "restart") {
        tweak.reboot = true;
      } else if (word == "restart?") {
        tweak.reboot.reset();
      } else if (word.starts_with("windows-")) {
        tweak.available = tweak.available && word != sample_;
      } else if (word != "without") {
        throw std::runtime_error("unknown word " + word);
      }
    }
    tweaks.push_back(tweak);
    if (bar != std::string::npos) tweaks.back().lines.push_back(lineOf(line.substr(bar + 1), 3));
  }

  ExpectedLine lineOf(const std::string& text, std::size_t states) const {
    ExpectedLine line;
    std::vector<std::string> fields = parts(' ' + text);
    std::string first = fields.at(0);
    if (!first.empty()) first.erase(0, 1);
    fields.erase(fields.begin());
    if (take(first, "file ")) {
      line.what = ExpectedLine::What::File;
      line.key = filledIn(first);
    } else if (first == "key") {
      line.what = ExpectedLine::What::Key;
      line.key = key_;
    } else if (first.empty()) {
      line.key = key_;
      line.name = fields.at(0) == "(default)" ? "" : fields.at(0);
      fields.erase(fields.begin());
    } else {
      throw std::runtime_error("unknown line");
    }
    if (fields.size() != states || line.key.empty()) throw std::runtime_error("wrong fields");
    std::ranges::transform(fields, line.states.begin(),
                           [this](const std::string& field) { return filledIn(field); });
    return line;
  }
  static std::string unquoted(const std::string& text) { return text.substr(1, text.size() - 2); }

  std::string sample_;
  char letter_;
  std::string key_;
  Names names_;
};

}  // namespace korvex::test
