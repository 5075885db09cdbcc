// The hives of Windows NT and its successors (regf): NTUSER.DAT, SOFTWARE, SYSTEM and the like.
#pragma once

#include <filesystem>

#include "platform/hives/hive_file.h"

namespace korvex::platform {

// 2: no such file; 1017: no hive (or a hive's log); 1009: so damaged that nothing can be read.
OpenedHive openRegfHive(const std::filesystem::path& file);

}  // namespace korvex::platform
