// Lines, keys and values of registry-editor files.
#include "platform/text/reg_parser.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "platform/text/reg_hex.h"

namespace korvex::platform {
namespace {

constexpr std::size_t kLongest = std::size_t{32} << 20;  // of a line, and of a value's hex data
constexpr std::size_t kMaxValueName = 16383;             // of Windows 2000; older ones take less

bool isBlank(char c) { return c == ' ' || c == '\t'; }

char* skipBlanks(char* at, char* end) {
  while (at < end && isBlank(*at)) ++at;
  return at;
}

std::string_view trimLeft(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  return text;
}

bool longerThan(std::string_view text, std::size_t characters) {
  return text.size() > characters && characterCount(text) > characters;
}

bool hasNul(std::string_view text) { return text.find('\0') != std::string_view::npos; }

// What is wrong with the path of a key line; null where nothing is.
const char* pathProblem(std::string_view path) {
  if (path.empty()) return nullptr;
  if (hasNul(path)) return "the key's name holds a null character";
  while (true) {
    const std::size_t end = path.find('\\');
    const std::string_view part = path.substr(0, end);
    if (part.empty()) return "a part of the key's name is empty";
    if (longerThan(part, kMaxNameCharacters)) return "a part of the key's name is too long";
    if (end == std::string_view::npos) return nullptr;
    path.remove_prefix(end + 1);
  }
}

// A root, or a key that is a file of the registry: nothing that a file may delete.
bool holdsHive(const KeyPath& key) {
  constexpr auto hives =
      std::to_array<std::string_view>({"SAM", "SECURITY", "SOFTWARE", "SYSTEM", "HARDWARE"});
  if (key.path.empty()) return true;
  if (key.root == HKEY_USERS) return key.path.find('\\') == std::string_view::npos;
  return key.root == HKEY_LOCAL_MACHINE &&
         std::any_of(hives.begin(), hives.end(),
                     [&](std::string_view hive) { return sameName(hive, key.path); });
}

// Whether text begins with the lower-case prefix, which is taken off. strange is set where the
// file has capitals: Windows' own editor writes none.
bool takePrefix(std::string_view& text, std::string_view prefix, bool& strange) {
  if (text.size() < prefix.size() || !sameName(text.substr(0, prefix.size()), prefix)) return false;
  strange = !text.starts_with(prefix);
  text.remove_prefix(prefix.size());
  return true;
}

bool isText(RegType type) {
  return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

}  // namespace

RegTextParser::RegTextParser(RegTextSink& sink, const CodePage& codePage, ShortRoots shortRoots)
    : sink_(sink), codePage_(codePage), shortRoots_(shortRoots), decoder_(codePage) {}

bool RegTextParser::feed(std::string_view block) {
  if (stopped_) return false;
  decoder_.decode(block, text_);
  return takeLines();
}

bool RegTextParser::finish() {
  if (stopped_) return false;
  const bool clean = decoder_.finish(text_);
  if (!takeLines()) return false;
  takeLastLine();
  if (!clean && !stopped_) problem("the file ends within a character");
  if (inHex_ && !stopped_) sink_.problem(valueLine_, "the file ends within the value");
  return !stopped_;
}

// Takes all whole lines off text_ and keeps the begun one.
bool RegTextParser::takeLines() {
  std::size_t taken = 0;
  while (!stopped_ && scanned_ < text_.size()) {
    const void* found = std::memchr(text_.data() + scanned_, '\n', text_.size() - scanned_);
    if (found == nullptr) {
      scanned_ = text_.size();
      break;
    }
    const auto end = static_cast<std::size_t>(static_cast<const char*>(found) - text_.data());
    scanned_ = end + 1;
    if (inLongLine_) {
      inLongLine_ = false;
    } else {
      takeLine(text_.data() + taken, text_.data() + end);
    }
    taken = scanned_;
  }
  text_.erase(0, taken);
  scanned_ -= taken;
  if (text_.size() > kLongest) refuseLongLine();
  return !stopped_;
}

void RegTextParser::takeLastLine() {
  if (!text_.empty() && !inLongLine_) takeLine(text_.data(), text_.data() + text_.size());
  if (dialect_ == Dialect::Unknown) stopped_ = true;  // an empty file
  text_.clear();
}

void RegTextParser::refuseLongLine() {
  if (!inLongLine_) {
    ++line_;
    if (dialect_ == Dialect::Unknown) {
      stopped_ = true;
    } else {
      problem("the line is too long");
      if (trimLeft(text_).starts_with('[')) section_ = Section::None;
    }
    inHex_ = false;
  }
  inLongLine_ = true;
  text_.clear();
  scanned_ = 0;
}

void RegTextParser::takeLine(char* begin, char* end) {
  ++line_;
  if (end > begin && end[-1] == '\r') --end;
  const std::string_view line(begin, static_cast<std::size_t>(end - begin));
  if (dialect_ == Dialect::Unknown) {
    takeHeader(line);
    return;
  }
  if (decoder_.encoding() == RegTextDecoder::Encoding::Utf8 && !isWellFormed(line)) {
    problem("the line is not valid UTF-8");
    if (trimLeft(line).starts_with('[')) section_ = Section::None;
    inHex_ = false;
    return;
  }
  if (dialect_ == Dialect::Windows31) {
    takeWindows31Line(line);
    return;
  }
  if (inHex_) {
    takeContinuation(line);
    return;
  }
  char* const at = skipBlanks(begin, end);
  if (at == end || *at == ';' || *begin == '#') return;
  if (*at == '[') {
    takeKeyLine(line.substr(static_cast<std::size_t>(at + 1 - begin)));
  } else if (*at == '"' || *at == '@') {
    takeValueLine(at, end);
  } else {
    problem("this is neither a key nor a value");
  }
}

// Exact: an editor that finds anything else in the first line reads nothing of the file.
void RegTextParser::takeHeader(std::string_view line) {
  const std::string_view header = trimLeft(line);
  if (header == "REGEDIT4") {
    dialect_ = Dialect::Regedit4;
  } else if (header == "Windows Registry Editor Version 5.00") {
    dialect_ = Dialect::Version5;
  } else if (header == "REGEDIT") {
    dialect_ = Dialect::Windows31;
  } else {
    stopped_ = true;
    return;
  }
  if (decoder_.encoding() == RegTextDecoder::Encoding::Utf8) {
    note("the file is UTF-8, which registry editors of its time do not read");
  } else if (decoder_.encoding() == RegTextDecoder::Encoding::Utf16 &&
             dialect_ != Dialect::Version5) {
    note("the file is UTF-16 although its header belongs to 8-bit text");
  }
}

// "HKEY_CLASSES_ROOT\key = text" sets the default value; every other line means nothing.
void RegTextParser::takeWindows31Line(std::string_view line) {
  constexpr std::string_view root = "HKEY_CLASSES_ROOT";
  const std::size_t nameEnd = std::min(line.find_first_of(" \t"), line.size());
  const auto key = parseKeyPath(line.substr(0, nameEnd));
  if (!key || key->root != HKEY_CLASSES_ROOT) {
    if (!trimLeft(line).empty())
      note("only HKEY_CLASSES_ROOT means something in this kind of file");
    return;
  }
  if (nameEnd == root.size() + 1) {
    problem("a part of the key's name is empty");
    return;
  }
  std::string_view value = trimLeft(line.substr(nameEnd));
  if (value.starts_with('=')) value.remove_prefix(1);
  if (value.starts_with(' ')) value.remove_prefix(1);
  takeKey(*key, false);
  if (stopped_ || section_ != Section::Open) return;
  data_.assign(value);
  data_ += '\0';
  name_ = {};
  valueLine_ = line_;
  deliver(REG_SZ, data_);
}

// line begins after the bracket. The key runs to the last bracket: names may hold brackets.
void RegTextParser::takeKeyLine(std::string_view line) {
  section_ = Section::None;
  const std::size_t end = line.rfind(']');
  if (end == std::string_view::npos) {
    problem("no bracket closes the key");
    return;
  }
  line = line.substr(0, end);
  const bool remove = line.starts_with('-');
  if (remove) line.remove_prefix(1);
  const auto key = parseKeyPath(line, shortRoots_);
  if (!key) {
    problem("the key begins with no root of the registry");
  } else {
    takeKey(*key, remove);
  }
}

void RegTextParser::takeKey(const KeyPath& key, bool remove) {
  section_ = Section::None;
  if (const char* trouble = pathProblem(key.path)) {
    problem(trouble);
  } else if (key.root == HKEY_DYN_DATA) {
    section_ = remove ? Section::None : Section::Skipped;
    note("HKEY_DYN_DATA belongs to a running system and is passed over");
  } else if (remove && holdsHive(key)) {
    problem("a root or a whole hive cannot be deleted");
  } else if (remove) {
    heed(sink_.deleteKey(line_, key));
  } else {
    const RegStep step = sink_.beginKey(line_, key);
    if (step == RegStep::Done) section_ = Section::Open;
    heed(step);
  }
}

void RegTextParser::takeValueLine(char* at, char* end) {
  valueLine_ = line_;
  name_ = {};
  if (*at++ == '"') {
    if (!takeQuoted(at, end, nameBuffer_, name_)) {
      problem("no quote closes the value's name");
      return;
    }
    if (hasNul(name_)) {
      problem("the value's name holds a null character");
      return;
    }
    if (longerThan(name_, kMaxValueName)) {
      problem("the value's name is too long");
      return;
    }
  }
  at = skipBlanks(at, end);
  if (at == end || *at != '=') {
    problem("no equals sign follows the value's name");
    return;
  }
  takeData(skipBlanks(at + 1, end), end);
}

void RegTextParser::takeData(char* at, char* end) {
  if (at < end && *at == '"') {
    takeString(at + 1, end);
    return;
  }
  while (end > at && isBlank(end[-1])) --end;
  std::string_view rest(at, static_cast<std::size_t>(end - at));
  bool strange = false;
  if (rest.starts_with('-')) {
    rest = trimLeft(rest.substr(1));
    if (!rest.empty() && rest.front() != ';') {
      problem("something follows the minus sign");
    } else if (sectionTakes()) {
      heed(sink_.deleteValue(valueLine_, name_));
    }
  } else if (takePrefix(rest, "dword:", strange)) {
    if (strange) note("\"dword:\" is written in small letters");
    takeDword(rest);
  } else if (takePrefix(rest, "hex", strange) && !rest.empty() &&
             (rest.front() == ':' || rest.front() == '(')) {
    if (strange) note("\"hex:\" is written in small letters");
    takeHex(rest);
  } else {
    problem("the data is of no known form");
  }
}

void RegTextParser::takeString(char* at, char* end) {
  std::string_view text;
  if (!takeQuoted(at, end, data_, text)) {
    problem("no quote closes the string");
    return;
  }
  char* const textEnd = at - 1;  // the closing quote
  at = skipBlanks(at, end);
  if (at < end && *at != ';') {
    problem("something follows the string");
    return;
  }
  if (text.data() == data_.data()) {
    data_ += '\0';
    deliver(REG_SZ, data_);
  } else {
    *textEnd = '\0';  // the quote's place serves for the terminating zero
    deliver(REG_SZ, {text.data(), text.size() + 1});
  }
}

void RegTextParser::takeDword(std::string_view digits) {
  digits = trimLeft(digits.substr(0, digits.find(';')));
  while (!digits.empty() && isBlank(digits.back())) digits.remove_suffix(1);
  std::uint32_t number = 0;
  if (!parseHexNumber(digits, 8, number)) {
    problem("the number is not one to eight hexadecimal digits");
    return;
  }
  std::array<char, 4> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(number >> (8 * i));
  deliver(REG_DWORD, {bytes.data(), bytes.size()});
}

// rest begins after "hex".
void RegTextParser::takeHex(std::string_view rest) {
  type_ = REG_BINARY;
  if (rest.front() == '(') {
    const std::size_t end = rest.find(')');
    std::string_view digits = rest.substr(1, std::min(end, rest.size()) - 1);
    while (digits.size() > 1 && digits.front() == '0') digits.remove_prefix(1);
    if (end == std::string_view::npos || !parseHexNumber(digits, 8, type_)) {
      problem("the data's type is no hexadecimal number");
      return;
    }
    rest.remove_prefix(end + 1);
    if (!rest.starts_with(':')) {
      problem("no colon follows the data's type");
      return;
    }
  }
  bytes_.clear();
  takeHexBytes(rest.substr(1));
}

void RegTextParser::takeHexBytes(std::string_view line) {
  switch (bytes_.size() + line.size() / 2 > kLongest ? HexLine::Malformed
                                                     : appendHexBytes(line, bytes_)) {
    case HexLine::Complete:
      inHex_ = false;
      finishHex();
      break;
    case HexLine::Continues:
      if (!inHex_) {
        // The line goes before the value does.
        if (name_.data() != nameBuffer_.data()) nameBuffer_.assign(name_);
        name_ = nameBuffer_;
      }
      inHex_ = true;
      break;
    case HexLine::Malformed:
      inHex_ = false;
      problem("the data is not a list of hexadecimal bytes");
      break;
  }
}

// The line after ",\" belongs to the value whatever it holds; blank lines and comments may come
// between. A key that is lost that way must not leave its values to the key before it.
void RegTextParser::takeContinuation(std::string_view line) {
  line = trimLeft(line);
  if (line.empty() || line.front() == ';') return;
  if (line.front() == '[') section_ = Section::None;
  while (isBlank(line.back())) line.remove_suffix(1);
  takeHexBytes(line);
}

void RegTextParser::finishHex() {
  if (!isText(type_)) {
    deliver(type_, bytes_);
    return;
  }
  data_.clear();
  bool odd = false;
  if (dialect_ == Dialect::Version5) {
    odd = bytes_.size() % 2 != 0;
    if (odd) sink_.note(valueLine_, "the text's data has an odd number of bytes");
    appendUtf8(bytes_, data_);
  } else {
    codePage_.appendDecoded(bytes_, data_);
  }
  if (type_ == REG_EXPAND_SZ && !data_.empty() && !odd && data_.back() != '\0') data_ += '\0';
  deliver(type_, data_);
}

// Takes text up to its closing quote, beginning after the opening one. text is a part of the line,
// or of buffer where escapes had to be resolved. at is then behind the closing quote.
bool RegTextParser::takeQuoted(char*& at, char* end, std::string& buffer, std::string_view& text) {
  const auto find = [&](char c, const char* stop) {
    return static_cast<char*>(std::memchr(at, c, static_cast<std::size_t>(stop - at)));
  };
  char* quote = find('"', end);
  if (quote == nullptr) return false;
  char* escape = find('\\', quote);
  if (escape == nullptr) {
    text = {at, static_cast<std::size_t>(quote - at)};
    at = quote + 1;
    return true;
  }
  buffer.clear();
  while (escape != nullptr) {
    buffer.append(at, escape);
    if (escape + 1 == end) return false;
    const char c = escape[1];
    // The last three are no Windows editor's; one common compatible editor writes them.
    if (c == '\\' || c == '"') {
      buffer += c;
    } else if (c == 'n') {
      buffer += '\n';
    } else if (c == 'r') {
      buffer += '\r';
    } else if (c == '0') {
      buffer += '\0';
    } else {
      note("a backslash stands before a character that needs none");
      buffer += c;
    }
    at = escape + 2;
    if (quote < at) quote = find('"', end);
    if (quote == nullptr) return false;
    escape = find('\\', quote);
  }
  buffer.append(at, quote);
  text = buffer;
  at = quote + 1;
  return true;
}

void RegTextParser::deliver(RegType type, std::string_view data) {
  if (sectionTakes()) heed(sink_.setValue(valueLine_, name_, type, data));
}

// Whether a well-formed value has a key to go to; reports it where it should have one.
bool RegTextParser::sectionTakes() {
  if (section_ == Section::None) sink_.problem(valueLine_, "the value belongs to no key");
  return section_ == Section::Open;
}

void RegTextParser::heed(RegStep step) {
  if (step == RegStep::Stop) stopped_ = true;
}

void RegTextParser::problem(std::string_view text) { sink_.problem(line_, text); }
void RegTextParser::note(std::string_view text) { sink_.note(line_, text); }

}  // namespace korvex::platform
