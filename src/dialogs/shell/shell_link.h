// Shortcut files (.lnk), as far as startup programs need them: one that starts a file of a drive,
// and what such a file starts. Source of the layout: the Shell Link binary file format as Windows
// documents it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace korvex::dialogs {

// Text is 8-bit here, in the machine's code page.
struct ShellLink {
  std::string target;       // "C:\Program Files\Clock\clock.exe"
  std::string shortTarget;  // the same with 8.3 names
  std::uint32_t size = 0;   // of the target, in bytes
};

// The bytes of a shortcut: the target as a list of items and as a path, and its folder to start in.
std::string encodeShellLink(const ShellLink& link);

// The path that the shortcut leads to; "" for bytes that are no shortcut or name no path.
std::string targetOfShellLink(std::string_view bytes);

}  // namespace korvex::dialogs
