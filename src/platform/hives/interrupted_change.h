// A change of several files that a kill has cut off, as the note in the machine's folder tells it.
#pragma once

#include <string>
#include <vector>

#include "platform/hives/file_rename.h"

namespace korvex::platform {

class InterruptedChange {
 public:
  // folder is the machine's and stays the caller's. 2: there is no note; 13: it is damaged.
  Status read(int folder);

  // The new version's path below the folder where a reader must take it for this file; else "".
  std::string newVersionOf(const std::string& path) const;
  // message tells what has failed, or after success what has been left alone.
  Status finish(int folder, std::string& message);

 private:
  struct File {
    FileRename rename;
    FileRename::State state = FileRename::State::Changed;
  };
  bool goesOn() const;
  Status leaveUnlessNew(File& file, std::string& message);

  std::vector<File> files_;
};

// Both under the machine's lock: a note and new versions that are there belong to nobody.
Status removeNote(int folder);
Status removeOrphans(int folder);

}  // namespace korvex::platform
