// The files of a machine whose drives are host folders.
//
// What is no part of the machine: links (also those that stay inside: what they point at could
// change under us), devices, FIFOs and sockets, names that Windows could not hold, and Korvex' own
// ".korvex-..." files. They are not listed and never opened; a path that names one gives 5. Every
// folder on the way is opened by itself without following links, so that a link put there at the
// last moment leads nowhere either.
//
// A name is first looked for in the case given, then without regard to case (the first in byte
// order where several fold alike), then as a short name. A drive letter that the machine does not
// have gives 3, as on Windows; one whose host folder is gone gives 21.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/common/file_descriptor.h"
#include "platform/common/whole_file.h"
#include "platform/files.h"

namespace korvex::platform {

struct DriveOptions {
  bool readOnly = false;           // every change gives 19
  bool extendedAttributes = true;  // false: attributes lie in a file beside, wherever we are
};

class DriveFolders : public Files {
 public:
  using Map = std::map<char, std::filesystem::path>;  // 'C' -> host folder

  explicit DriveFolders(Map drives, DriveOptions options = {});

  Status attributes(std::string_view path, std::uint32_t& attributes) override;
  Status setAttributes(std::string_view path, std::uint32_t attributes) override;
  Status read(std::string_view path, std::string& bytes) override;
  Status replace(std::string_view path, std::string_view bytes) override;
  Status append(std::string_view path, std::string_view bytes) override;
  Status copy(std::string_view from, std::string_view to, Overwrite overwrite) override;
  Status move(std::string_view from, std::string_view to) override;
  Status remove(std::string_view path) override;
  Status createFolder(std::string_view path) override;
  Status removeFolder(std::string_view path) override;
  Status list(std::string_view pattern, std::vector<FileEntry>& entries) override;
  Status shortPath(std::string_view path, std::string& result) override;
  Status readPieces(std::string_view path,
                    const std::function<Status(std::string_view)>& take) override;
  Status freeSpace(std::string_view path, std::uint64_t& bytes) override;
  // Of several drives that hold it the one whose folder is nearest.
  std::string pathOfHost(std::string_view hostPath) override;

  // Two for large files, which are read and written piece by piece; the same rules hold. The
  // writer's commit() is the change.
  Status openToRead(std::string_view path, FileDescriptor& file);
  Status openToReplace(std::string_view path, std::unique_ptr<WholeFileWriter>& writer);

 private:
  struct Place;  // a name in an open folder, there or not

  Status openDrive(char drive, FileDescriptor& folder) const;
  Status locate(std::string_view path, Place& place) const;
  Status locateExisting(std::string_view path, Place& place) const;
  Status locateFile(std::string_view path, Place& place) const;
  Status checkForWriting(const Place& place) const;
  Status locateForWriting(std::string_view path, Place& place) const;
  Status attributesOf(const Place& place, std::uint32_t& attributes) const;
  Status checkNotReadOnly(const Place& place) const;
  Status copyFile(const Place& from, const Place& to) const;
  Status renameTo(const Place& from, const Place& to) const;

  Map drives_;
  DriveOptions options_;
};

}  // namespace korvex::platform
