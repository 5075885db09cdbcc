// Looking up single keys and values of a hive that is not part of a machine yet.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "platform/hives/hive_file.h"

namespace korvex::platform {

// kNoNode where one of the keys is missing or cannot be read.
HiveNode hiveKey(HiveFile& hive, std::initializer_list<std::string_view> path);
HiveNode hiveChild(HiveFile& hive, HiveNode key, std::string_view name);

// A text value without its terminating zero; "" where there is none.
std::string hiveText(HiveFile& hive, HiveNode key, std::string_view value);

}  // namespace korvex::platform
