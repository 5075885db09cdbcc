// The parser of registry-editor files. It knows no registry: it tells a sink what the file says.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/registry.h"
#include "platform/text/reg_decoder.h"
#include "platform/text/reg_names.h"
#include "platform/text/text.h"

namespace korvex::platform {

// What a sink made of a line. Refused: the sink has reported it; after a refused key its values
// are refused too. Stop: nothing of the rest is wanted.
enum class RegStep { Done, Refused, Stop };

// Hears the contents of a file in their order. Text and data are in the form of
// platform/registry.h; all views end with the call. line counts from 1.
class RegTextSink {
 public:
  virtual ~RegTextSink() = default;

  virtual RegStep beginKey(std::size_t line, const KeyPath& key) = 0;
  virtual RegStep deleteKey(std::size_t line, const KeyPath& key) = 0;
  virtual RegStep setValue(std::size_t line, std::string_view name, RegType type,
                           std::string_view data) = 0;
  virtual RegStep deleteValue(std::size_t line, std::string_view name) = 0;
  // A line that is refused.
  virtual void problem(std::size_t line, std::string_view text) = 0;
  // A line that is taken with a remark, or rightly passed over.
  virtual void note(std::size_t line, std::string_view text) = 0;
};

// Takes a file in blocks, cut anywhere. Holds one line and one value at a time, whatever the size
// of the file; a line or value beyond 32 MiB is refused.
class RegTextParser {
 public:
  RegTextParser(RegTextSink& sink, const CodePage& codePage, ShortRoots shortRoots);

  // False: there is no use in feeding more, because the sink stopped or the header is foreign.
  bool feed(std::string_view block);
  bool finish();

  // Whether the header was one of a registry-editor file; false before it was seen.
  bool headerAccepted() const { return dialect_ != Dialect::Unknown; }

 private:
  enum class Dialect { Unknown, Windows31, Regedit4, Version5 };
  enum class Section { None, Open, Skipped };

  bool takeLines();
  void takeLastLine();
  void refuseLongLine();
  void takeLine(char* begin, char* end);
  void takeHeader(std::string_view line);
  void takeWindows31Line(std::string_view line);
  void takeKeyLine(std::string_view line);
  void takeKey(const KeyPath& key, bool remove);
  void takeValueLine(char* at, char* end);
  void takeData(char* at, char* end);
  void takeString(char* at, char* end);
  void takeDword(std::string_view digits);
  void takeHex(std::string_view rest);
  void takeHexBytes(std::string_view line);
  void takeContinuation(std::string_view line);
  void finishHex();
  bool takeQuoted(char*& at, char* end, std::string& buffer, std::string_view& text);

  void deliver(RegType type, std::string_view data);
  bool sectionTakes();
  void heed(RegStep step);
  void problem(std::string_view text);
  void note(std::string_view text);

  RegTextSink& sink_;
  const CodePage& codePage_;
  ShortRoots shortRoots_;
  RegTextDecoder decoder_;

  std::string text_;         // decoded, not yet taken
  std::size_t scanned_ = 0;  // no line end before this place in text_
  std::size_t line_ = 0;
  bool inLongLine_ = false;
  bool stopped_ = false;

  Dialect dialect_ = Dialect::Unknown;
  Section section_ = Section::None;

  // The value at hand. Hex data may go on over several lines.
  bool inHex_ = false;
  std::size_t valueLine_ = 0;
  RegType type_ = REG_NONE;
  std::string_view name_;
  std::string nameBuffer_;
  std::string bytes_;
  std::string data_;
};

}  // namespace korvex::platform
