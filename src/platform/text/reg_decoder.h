// The outermost skin of a registry-editor file: its encoding.
#pragma once

#include <string>
#include <string_view>

#include "platform/text/text.h"

namespace korvex::platform {

// Turns the blocks of a file, cut anywhere, into UTF-8. UTF-16 is told by its byte order mark, and
// so is UTF-8; everything else is 8-bit text in the code page.
class RegTextDecoder {
 public:
  enum class Encoding { Undecided, Utf16, Utf16BigEndian, Utf8, CodePage };

  explicit RegTextDecoder(const CodePage& codePage) : codePage_(codePage) {}

  // Appends what is whole of the block and keeps the rest for the next one.
  void decode(std::string_view block, std::string& text);
  // The end of the file. False where it ends within a character; that one is lost.
  bool finish(std::string& text);

  Encoding encoding() const { return encoding_; }

 private:
  void decide();
  void decodeKnown(std::string_view block, std::string& text);
  void decodeUtf16(std::string_view block, std::string& text);

  const CodePage& codePage_;
  Encoding encoding_ = Encoding::Undecided;
  std::string kept_;  // the first bytes while undecided; then a cut UTF-16 character
};

}  // namespace korvex::platform
