// The registry files of a Wine prefix (system.reg, user.reg, userdef.reg): text of Wine's own kind.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/hives/hive_file.h"

namespace korvex::platform {

// What is read is what Wine reads: a key that stands in two places is one key, of two lines for one
// value the later one counts, and the keys above a key need no place of their own. What a change
// does not name is written to the byte as it stood, with lines that Wine cannot read, comments and
// the order of it all. Where a value is set or deleted, all lines for it become the one or go.
// Left out of what is told, but kept: keys with a NUL or more than 255 characters in their name,
// and keys below level 512. A NUL in a value's name is told as its symbol, U+2400.
//
// 2: no such file; 1017: not Wine's, or of a version that this does not know.
OpenedHive openWineText(const std::filesystem::path& file);
OpenedHive parseWineText(std::string bytes, std::string whyReadOnly = {});

// What stands before the first key.
struct WineTextHeader {
  std::string root;  // what the keys are relative to: "REGISTRY\Machine", "REGISTRY\User\S-1-..."
  std::string arch;  // "win32" or "win64"; "" in a file that does not tell
};

WineTextHeader readWineTextHeader(std::string_view bytes);
Status readWineTextHeader(const std::filesystem::path& file, WineTextHeader& header);

}  // namespace korvex::platform
