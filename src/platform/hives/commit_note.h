// The note of a change of several files: what is to be renamed, and by what the files are known.
//
// It lies on a disk that others can write. What parseNote() gives leads nowhere but down from the
// machine's folder, to names that are as FileSet makes them; whether there are links on the way is
// asked when the path is walked.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/hives/lasting_stamp.h"

namespace korvex::platform {

constexpr std::string_view kNoteName = ".korvex-commit";
constexpr std::string_view kNewVersionStem = "new-";  // after kOwnFilePrefix
// What had been made for a file that others have changed since; nobody removes it.
constexpr std::string_view kLeftVersionPrefix = ".korvex-left-";

struct NotedFile {
  std::string path;     // below the machine's folder, with "/"
  std::string newName;  // of the new version, in the same folder as the file
  LastingStamp before;
  LastingStamp after;  // of the new version
};

// ".korvex-new-" and sixteen hexadecimal digits.
bool isNewVersionName(std::string_view name);

std::string encodeNote(const std::vector<NotedFile>& files);
// False for what encodeNote() has not made; files is empty then.
bool parseNote(std::string_view text, std::vector<NotedFile>& files);

}  // namespace korvex::platform
