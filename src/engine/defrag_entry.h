// The registry names of the defragmentation at the next start: what its routine writes and its
// reader looks for.
#pragma once

#include <cstdint>
#include <string_view>

namespace korvex::engine {

constexpr std::string_view kRunOnceExKey =
    "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnceEx";
constexpr std::string_view kDefragEntryKey =
    "Software\\Microsoft\\Windows\\CurrentVersion\\RunOnceEx\\Defrag";
constexpr std::string_view kTitleValue = "Title";
constexpr std::string_view kFlagsValue = "Flags";
constexpr std::string_view kDefragTitle = "Defrag at Startup";
// RunOnceEx: show no error dialogs. A start must not wait for somebody to answer one.
constexpr std::int16_t kDefragFlags = 8;
constexpr std::string_view kDefragCommandValue = "1";
constexpr std::string_view kDefragCommand = "||DEFRAG.EXE /ALL";

}  // namespace korvex::engine
