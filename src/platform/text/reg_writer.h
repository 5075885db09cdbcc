// The text of registry-editor files. Knows no registry and no file.
#pragma once

#include <string>
#include <string_view>

#include "platform/registry.h"
#include "platform/text/text.h"

namespace korvex::platform {

enum class RegFormat {
  Regedit4,  // 8-bit text in a code page: what Windows 95, 98, Me and NT 4 read and write
  Version5,  // UTF-16: what Windows 2000 writes
};

// Builds a file's text piece by piece, in its final encoding. What the format cannot hold is
// refused with the reason and leaves the text as it was.
class RegTextWriter {
 public:
  // codePage is that of RegFormat::Regedit4.
  RegTextWriter(RegFormat format, const CodePage& codePage);

  void header();
  // Null on success, else why it cannot be written.
  const char* beginKey(std::string_view fullName);
  const char* value(std::string_view name, RegType type, std::string_view data);
  void endKey();
  // Lines that delete: "[-KEY]", and "NAME"=- below a key.
  const char* deleteKey(std::string_view fullName);
  const char* deleteValue(std::string_view name);

  // What was built since the last clear().
  std::string_view bytes() const { return bytes_; }
  void clear() { bytes_.clear(); }

 private:
  const char* beginValue(std::string_view name);
  const char* appendData(RegType type, std::string_view data);
  void appendHex(RegType type, std::string_view data);
  bool textBytes(std::string_view text, std::string& bytes) const;
  const char* emit();

  RegFormat format_;
  const CodePage& codePage_;
  std::string line_;     // the value or key at hand, in UTF-8
  std::string scratch_;  // text bytes for hex data
  std::string bytes_;
};

}  // namespace korvex::platform
