// One file of a change on its way from the name of its new version to its own.
#pragma once

#include <string>

#include "platform/common/file_descriptor.h"
#include "platform/hives/commit_note.h"
#include "platform/status.h"

namespace korvex::platform {

// The host's names are exchanged in one step where it can do that, so that the old file stays,
// under the new version's name, until it is known that the whole change stands.
class FileRename {
 public:
  // Ready: to be renamed. New: has been renamed. Changed: others have been here since.
  enum class State { Ready, New, Changed };

  // Walks down from the machine's folder; follows no link. 3 where the way has gone.
  Status locate(int machineFolder, std::string path);

  int folder() const { return folder_.get(); }
  const std::string& name() const { return name_; }
  NotedFile& noted() { return noted_; }
  const NotedFile& noted() const { return noted_; }

  State state() const;
  // 32: others have changed the file in this very moment; it stands.
  Status rename();
  bool renamed() const { return renamed_; }
  // Of one that has been renamed. Where names cannot be exchanged, the old file is no more.
  bool canTakeBack() const { return exchanged_ || !noted_.before.exists; }
  Status takeBack();
  // After the rename, when the old file is needed no longer.
  Status removeOld();
  // Puts the new version aside where nobody removes it; name is what it is called then.
  Status leave(std::string& name);

 private:
  Status exchange();

  FileDescriptor folder_;
  std::string name_;
  NotedFile noted_;
  bool renamed_ = false;
  bool exchanged_ = false;
};

}  // namespace korvex::platform
