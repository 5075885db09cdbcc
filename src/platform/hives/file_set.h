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
// time stamp or number differ from what the note tells) is left alone, and its new version stays
// beside it as ".korvex-left-..."; where nothing had been renamed yet, this holds for all files.
// Owner, mode and extended attributes of the old files are kept. Links are followed on the way to
// a file and for its own name, as long as they stay within the folder. A single file needs no note.
// commit() and finishInterrupted() are called under the machine's lock.
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
  // On failure every old file stands, and message names the file and the reason. Only where the
  // host cannot exchange two names in one step (FAT, FUSE), and a later rename fails after an
  // earlier one, the note stays for finishInterrupted(), and message tells so.
  Status commit(std::string& message);

  // What a reader must take for a file while an unfinished note lies there: its new version, or the
  // file itself. A new version that cannot be found any more has just got its name: ask again.
  static std::filesystem::path current(const std::filesystem::path& folder,
                                       const std::filesystem::path& file);
  // Finishes what a kill has cut off; also removes new versions that no note tells of (those in
  // other folders than the machine's go with the next commit there). Before anything else is
  // written. After success message tells what had to be left alone, if anything. 13: the note is
  // damaged, and what it told is lost; nothing has been done.
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
