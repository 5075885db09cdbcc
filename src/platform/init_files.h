// Initialisation files: WIN.INI and private ones by the five profile functions.
//
// Sections and keys compare without regard to case; a key ends at the first '='; ';' starts a
// comment only at the start of a line. A rewrite changes one line and keeps everything else to the
// byte. A file name without a folder lies in the Windows folder. Text is UTF-8 here and the
// machine's code page in the file; text that the code page cannot hold is refused (1113).
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace korvex::platform {

class InitFiles {
 public:
  virtual ~InitFiles() = default;

  // The value, one pair of quotes around it dropped, or fallback (its trailing blanks dropped)
  // where section or key are missing. Without a key: the section's keys, each followed by a zero;
  // without a section: the file's sections likewise.
  virtual std::string GetPrivateProfileStringA(std::optional<std::string_view> section,
                                               std::optional<std::string_view> key,
                                               std::string_view fallback,
                                               std::string_view file) = 0;
  // Without a value the key goes, without a key the whole section. A missing file is made.
  virtual Status WritePrivateProfileStringA(std::string_view section,
                                            std::optional<std::string_view> key,
                                            std::optional<std::string_view> value,
                                            std::string_view file) = 0;
  // The section's lines "key=value", each followed by a zero; comments and blank lines left out.
  virtual std::string GetPrivateProfileSectionA(std::string_view section,
                                                std::string_view file) = 0;
  // The same two for WIN.INI.
  virtual std::string GetProfileStringA(std::optional<std::string_view> section,
                                        std::optional<std::string_view> key,
                                        std::string_view fallback) = 0;
  virtual Status WriteProfileStringA(std::string_view section, std::optional<std::string_view> key,
                                     std::optional<std::string_view> value) = 0;
};

}  // namespace korvex::platform
