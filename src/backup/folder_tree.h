// Folders of a machine with everything in them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/files.h"

namespace korvex::backup {

struct TreeEntry {
  std::string path;  // below the folder: "Links\Home.url"
  std::uint32_t attributes = 0;
  std::uint64_t size = 0;

  bool isFolder() const { return (attributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0; }
};

// Folders before what is in them. A folder that is not there is an empty one.
platform::Status listTree(platform::Files& files, const std::string& folder,
                          std::vector<TreeEntry>& entries);

// Removes a folder with everything in it, read-only files too. After a failure a part may be gone.
platform::Status removeTree(platform::Files& files, const std::string& folder);

// Removes a file also where it is read-only.
platform::Status removeFile(platform::Files& files, const std::string& path);

// Copies with attributes, over a read-only file too; makes the folders on the way.
platform::Status copyOver(platform::Files& files, const std::string& from, const std::string& to);

// Length and a 64-bit FNV-1a checksum of a file's bytes.
platform::Status measure(platform::Files& files, const std::string& path, std::uint64_t& size,
                         std::uint64_t& checksum);

// "C:\A\B" -> "C:\A"; "C:\A" -> "C:\".
std::string parentFolder(const std::string& path);
// The last part of a path.
std::string fileName(const std::string& path);
// The ending with its dot, in lower case: ".cur"; "" for none.
std::string extensionOf(const std::string& path);

}  // namespace korvex::backup
