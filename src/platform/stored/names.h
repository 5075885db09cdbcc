// Names and text as the registry compares and limits them.
#pragma once

#include <string>
#include <string_view>

#include "platform/registry.h"
#include "platform/text/text.h"

namespace korvex::platform {

bool isAscii(std::string_view text);
// sameName() with a short way for ASCII.
bool namesMatch(std::string_view left, std::string_view right);
// foldName() into a string whose room is used again.
void foldInto(std::string_view name, std::string& folded);

// What text a machine's registry can hold: all of Unicode on NT, one code page on 95, 98 and Me.
class TextRules {
 public:
  // Null: everything that platform/registry.h calls text.
  explicit TextRules(const CodePage* codePage) : codePage_(codePage) {}

  // 206 over 255 characters, 87 with a zero inside, 1113 where the machine cannot hold it.
  Status checkName(std::string_view name) const;
  // 1113 where the machine cannot hold data of this type; types that are no text hold anything.
  Status checkData(RegType type, std::string_view data) const;

 private:
  bool holds(std::string_view text) const;

  const CodePage* codePage_;
};

}  // namespace korvex::platform
