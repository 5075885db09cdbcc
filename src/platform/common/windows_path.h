// Windows paths, taken apart: what a path means before any file system is asked.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/status.h"

namespace korvex::platform {

// An absolute path on a drive. "." and ".." are gone, and so are the dots and blanks that Windows
// drops from the end of a name.
struct WindowsPath {
  char drive = 'C';                // upper-cased
  std::vector<std::string> parts;  // empty for the root of the drive
  bool trailingSeparator = false;  // "C:\WINNT\": only a folder can be meant
};

// 161: no absolute path on a drive (relative, "\\server\share", "\\?\", "\\.\"), or one that climbs
// above its root, which Windows would quietly read as the root. 123: a name that Windows forbids, a
// device name (CON, NUL.txt, COM1:), a name of dots only, or text that is no UTF-8. 206: more than
// 259 characters.
Status parseWindowsPath(std::string_view text, WindowsPath& path);
// The same, but the last part goes to pattern and may hold '*' and '?'. "C:\" has an empty one.
Status parseWindowsPattern(std::string_view text, WindowsPath& folder, std::string& pattern);

// "C:\WINNT\win.ini".
std::string formatWindowsPath(const WindowsPath& path);

// True for a name that a Windows path can hold as it stands: no part that parsing would change or
// refuse.
bool isWindowsName(std::string_view name);
bool isDeviceName(std::string_view name);
// Windows' wildcards, without regard to case: "*.*" matches every name, "*." one without a dot.
bool matchesWildcards(std::string_view pattern, std::string_view name);

}  // namespace korvex::platform
