// The files of a machine, with the Windows view of them.
//
// Paths are Windows paths in UTF-8 ("C:\WINNT\system32"), with '\' or '/', compared without regard
// to case; a long name is also found by its 8.3 short name. They never leave the machine's drive
// folders: not by "..", not by a link, not by a device name (CON, NUL, COM1, ...). Statuses are
// Windows': 2 no such file, 3 no such folder on the way or no such drive, 21 a drive whose folder
// is gone, 5 denied (a read-only file, a folder where a file was due), 123 or 161 a malformed name,
// 19 a read-only machine, 112 disk full. A file is replaced whole: after a failure or a kill the
// old or the new content stands.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/status.h"

namespace korvex::platform {

// Source: winnt.h as Windows documents it.
constexpr std::uint32_t FILE_ATTRIBUTE_READONLY = 0x1;
constexpr std::uint32_t FILE_ATTRIBUTE_HIDDEN = 0x2;
constexpr std::uint32_t FILE_ATTRIBUTE_SYSTEM = 0x4;
constexpr std::uint32_t FILE_ATTRIBUTE_DIRECTORY = 0x10;
constexpr std::uint32_t FILE_ATTRIBUTE_ARCHIVE = 0x20;

enum class Overwrite { No, Yes };

struct FileEntry {
  std::string name;       // as stored
  std::string shortName;  // 8.3, the same from run to run; equal to name where that is 8.3 already
  std::uint32_t attributes = 0;
  std::uint64_t size = 0;
  std::int64_t modified = 0;  // seconds since 1970, UTC
};

class Files {
 public:
  virtual ~Files() = default;

  virtual Status attributes(std::string_view path, std::uint32_t& attributes) = 0;
  // Sets READONLY, HIDDEN, SYSTEM and ARCHIVE; the directory bit is not changed.
  virtual Status setAttributes(std::string_view path, std::uint32_t attributes) = 0;

  virtual Status read(std::string_view path, std::string& bytes) = 0;
  // The same for large files: the bytes in order, piece by piece. A status other than success from
  // take ends it and is returned.
  virtual Status readPieces(std::string_view path,
                            const std::function<Status(std::string_view)>& take) {
    std::string bytes;
    const Status status = read(path, bytes);
    return status == ERROR_SUCCESS ? take(bytes) : status;
  }
  // Makes or replaces the file, keeping its attributes. A READONLY file: 5.
  virtual Status replace(std::string_view path, std::string_view bytes) = 0;
  // Adds to the end of a log file; makes it where it is missing. The one write that is not whole.
  virtual Status append(std::string_view path, std::string_view bytes) = 0;
  // 80 where the target exists and Overwrite::No.
  virtual Status copy(std::string_view from, std::string_view to, Overwrite overwrite) = 0;
  virtual Status move(std::string_view from, std::string_view to) = 0;
  virtual Status remove(std::string_view path) = 0;

  // Makes the missing folders on the way too; 183 where it exists.
  virtual Status createFolder(std::string_view path) = 0;
  // Only an empty folder goes: 145 otherwise.
  virtual Status removeFolder(std::string_view path) = 0;

  // What matches the last part of the pattern ("C:\WINNT\*.hlp"; '*' and '?', also against short
  // names; "*.*" matches names without a dot), sorted by folded name, without "." and "..".
  // 2 where nothing matches.
  virtual Status list(std::string_view pattern, std::vector<FileEntry>& entries) = 0;

  // Every part of an existing path in its 8.3 form (GetShortPathNameA).
  virtual Status shortPath(std::string_view path, std::string& result) = 0;

  // Bytes that can still be written where the path lies, which need not be there yet. 21 and 3 as
  // above; 50 where it cannot be told.
  virtual Status freeSpace(std::string_view /*path*/, std::uint64_t& /*bytes*/) {
    return ERROR_NOT_SUPPORTED;
  }
  // The Windows path of a file or folder of the system that Korvex runs on; "" where no drive of
  // the machine holds it.
  virtual std::string pathOfHost(std::string_view /*hostPath*/) { return {}; }

  // True where the path names an existing file or folder.
  bool exists(std::string_view path) {
    std::uint32_t ignored = 0;
    return attributes(path, ignored) == ERROR_SUCCESS;
  }
};

}  // namespace korvex::platform
