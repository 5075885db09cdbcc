// Several files of one machine replaced as one: all are new or all are old, also after a kill.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/status.h"

namespace korvex::platform {

// A new version of each file is written beside it and flushed; then a note of them all
// (".korvex-commit") is put into the machine's folder, the files are renamed, and the note goes. A
// note that is found belongs to a change that a kill has cut off after it had been decided:
// finishing it renames what is left. A file that has been changed by others since (its size,
// time stamp or number differ from what the note tells) is left alone, and so is its new version.
// Owner, mode and extended attributes of the old files are kept; links are followed for the file's
// own name only when it is a link to a regular file. A single file needs no note.
class FileSet {
 public:
  // Writes the new content to an empty file that is open for reading and writing.
  using Writer = std::function<Status(int file)>;

  // folder is the machine's; all files lie in it.
  explicit FileSet(std::filesystem::path folder) : folder_(std::move(folder)) {}

  void add(std::filesystem::path file, Writer write);
  // Called when everything is on the disk and nothing has its name yet; what it returns other than
  // 0 ends the change with nothing done.
  void checkBeforeRename(std::function<Status()> check) { check_ = std::move(check); }
  // On failure every old file stands, and message names the file and the reason.
  Status commit(std::string& message);

  // What a reader must take for a file while an unfinished note lies there: its new version, or the
  // file itself.
  static std::filesystem::path current(const std::filesystem::path& folder,
                                       const std::filesystem::path& file);
  // Finishes what a kill has cut off; also removes new versions that no note tells of. Before
  // anything else is written, under the machine's lock.
  static Status finishInterrupted(const std::filesystem::path& folder, std::string& message);

 private:
  struct Entry {
    std::filesystem::path file;
    Writer write;
  };
  std::filesystem::path folder_;
  std::vector<Entry> entries_;
  std::function<Status()> check_;
};

}  // namespace korvex::platform
