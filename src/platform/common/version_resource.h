// The version that a program file tells of itself in its version resource.
#pragma once

#include <string_view>

#include "platform/status.h"
#include "platform/system_info.h"

namespace korvex::platform {

// Reads VS_FIXEDFILEINFO from the bytes of a PE (32 or 64 bit) or NE (16 bit) file. 13 where the
// file has no version resource or is no such file; damaged ones as well, without reading beyond
// their end. Source: the PE and NE formats and VS_VERSIONINFO as Windows documents them.
Status readVersionResource(std::string_view file, FileVersion& version);

}  // namespace korvex::platform
