// By what a file is told from a later version of itself without reading it.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>

namespace korvex::platform {

struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t number = 0;
  std::int64_t size = -1;  // -1: no such file
  std::int64_t seconds = 0;
  std::int64_t nanoseconds = 0;

  bool operator==(const FileStamp&) const = default;

  // Follows links.
  static FileStamp of(const std::filesystem::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) return {};
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec,
            status.st_mtim.tv_nsec};
  }
};

}  // namespace korvex::platform
