// The new version of an NT hive, made by hivex.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/hives/hive_file.h"

namespace korvex::platform {

// The largest data of a value. From format 1.4 on longer data lies in pieces, which hivex does not
// write; and it gives no cell of more than a million bytes.
constexpr std::size_t largestRegfValue(std::uint32_t minor) { return minor >= 4 ? 16344 : 999000; }

// bytes are a whole hive (regf_check.h).
std::unique_ptr<HiveEdit> startRegfEdit(std::shared_ptr<const std::string> bytes, Status& status);

// A hive that lies in memory; whyReadOnly is what the file around it has to say.
OpenedHive openRegfBytes(std::shared_ptr<const std::string> bytes, std::string whyReadOnly);

}  // namespace korvex::platform
