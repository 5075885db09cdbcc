// Files that are replaced whole: written beside the old one, flushed, renamed over it.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/common/file_descriptor.h"
#include "platform/status.h"

namespace korvex::platform {

// Windows' number for what errno tells.
Status statusOfErrno(int error);

// Host files whose names begin like this are Korvex' own and no part of a machine.
constexpr std::string_view kOwnFilePrefix = ".korvex-";

// Writes a new version of a file, piece by piece. Until commit() has succeeded the old file stands;
// without a commit, and after a kill, nothing is left behind (but a ".korvex-..." file where the
// host cannot keep a file without a name). Mode, owner and extended attributes of the old file are
// kept. The first failure stays: every later call returns it. Refused with 5: a file that may not
// be written, and anything but a regular file.
class WholeFileWriter {
 public:
  // Follows links, as a file that a person names on the host; the folder must exist.
  explicit WholeFileWriter(const std::filesystem::path& file);
  // Follows no link; folder is a descriptor and stays the caller's. stem stands in the names that
  // the new version bears before its own: ".korvex-STEMxxxxxxxxxxxxxxxx".
  WholeFileWriter(int folder, std::string name, std::string stem = {});
  ~WholeFileWriter();
  WholeFileWriter(const WholeFileWriter&) = delete;
  WholeFileWriter& operator=(const WholeFileWriter&) = delete;

  Status status() const { return status_; }
  // The new file, for what must be set on it before the commit; -1 after a failed start.
  int descriptor() const { return file_.get(); }

  Status write(std::string_view bytes);
  // Success means that the new file is on the disk under its name.
  Status commit();

  // For files that are to be renamed together: the new version is on the disk under a name of its
  // own. It goes with this object, unless it is renamed or kept.
  Status prepare();
  const std::string& preparedName() const { return temporaryName_; }
  void keep() { temporaryName_.clear(); }

 private:
  void start(int folder);
  void openTemporary();
  void inherit();
  std::string newTemporaryName() const;
  bool giveTemporaryName();
  Status fail(int error);

  FileDescriptor folder_;
  FileDescriptor file_;
  std::string name_;
  std::string stem_;
  std::string temporaryName_;  // empty while the new file has no name
  Status status_ = ERROR_SUCCESS;
};

Status replaceWholeFile(const std::filesystem::path& file, std::string_view bytes);
Status replaceWholeFile(int folder, const std::string& name, std::string_view bytes,
                        const std::string& stem = {});
// So that what has come and gone in it stays so. Network file systems that cannot flush a folder
// count as done: a rename stands there all the same.
Status flushFolder(int folder);

}  // namespace korvex::platform
