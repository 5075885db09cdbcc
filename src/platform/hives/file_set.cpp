// Replacing several files: new versions, the note, the renames, and the way back.
#include "platform/hives/file_set.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <list>
#include <optional>

#include "platform/common/file_descriptor.h"
#include "platform/common/whole_file.h"
#include "platform/hives/interrupted_change.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

FileDescriptor openFolder(const fs::path& folder) {
  return FileDescriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

Status statusOfOpen(int error) {
  return error == ENOENT ? ERROR_PATH_NOT_FOUND : statusOfErrno(error);
}

// The file's path below the folder, without links. 3: its folder is missing; 5: it lies elsewhere,
// or is a link that leads nowhere.
Status pathBelow(const fs::path& folder, const fs::path& file, std::string& path) {
  std::error_code error;
  const fs::path root = fs::canonical(folder, error);
  if (error) return statusOfOpen(error.value());
  const fs::path parent = file.has_parent_path() ? file.parent_path() : fs::path(".");
  fs::path target = fs::canonical(parent, error) / file.filename();
  if (error) return statusOfOpen(error.value());
  if (fs::is_symlink(target, error)) target = fs::canonical(target, error);
  if (error && error.value() != ENOENT) return statusOfErrno(error.value());
  path = target.lexically_relative(root).string();
  const bool isBelow = !path.empty() && path != "." && path != ".." && !path.starts_with("../");
  return isBelow && !fs::is_symlink(target, error) ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

// The files of one commit, from their new versions to their names.
class Change {
 public:
  Change(const fs::path& folder, std::string& message) : path_(folder), message_(message) {}

  Status open();
  Status locate(const fs::path& file);
  Status prepare(std::size_t index, const FileSet::Writer& write);
  Status check(const std::function<Status()>& check);
  Status decide();
  Status renameAll();
  void takeBack();
  void settle();

 private:
  struct File {
    fs::path path;
    FileRename rename;
    std::optional<WholeFileWriter> writer;
  };
  Status fail(const fs::path& file, Status status);
  Status flush();

  fs::path path_;
  std::string& message_;
  FileDescriptor folder_;
  std::list<File> files_;  // a writer cannot be moved
};

Status Change::fail(const fs::path& file, Status status) {
  if (status != ERROR_SUCCESS) {
    message_ = fmt::format("{}: {}.", file.string(), describeStatus(status));
  }
  return status;
}

Status Change::open() {
  folder_ = openFolder(path_);
  if (!folder_) return fail(path_, statusOfOpen(errno));
  struct stat note {};
  if (::fstatat(folder_.get(), std::string(kNoteName).c_str(), &note, AT_SYMLINK_NOFOLLOW) != 0) {
    return ERROR_SUCCESS;
  }
  return FileSet::finishInterrupted(path_, message_);
}

Status Change::locate(const fs::path& file) {
  std::string path;
  Status status = pathBelow(path_, file, path);
  if (status == ERROR_ACCESS_DENIED) {
    message_ = fmt::format("{}: it is a link that leads out of {}, and is not followed.",
                           file.string(), path_.string());
    return status;
  }
  if (status != ERROR_SUCCESS) return fail(file, status);
  for (const File& other : files_) {
    if (other.rename.noted().path == path) return fail(file, ERROR_INVALID_PARAMETER);
  }
  File& added = files_.emplace_back();
  added.path = file;
  FileRename& rename = added.rename;
  status = rename.locate(folder_.get(), path);
  if (status == ERROR_SUCCESS) {
    status = stampOf(rename.folder(), rename.name(), rename.noted().before);
  }
  // Before new ones are made. They do no harm: what cannot be removed stays.
  if (status == ERROR_SUCCESS) (void)removeOrphans(rename.folder());
  return fail(file, status);
}

Status Change::prepare(std::size_t index, const FileSet::Writer& write) {
  File& file = *std::next(files_.begin(), static_cast<std::ptrdiff_t>(index));
  FileRename& rename = file.rename;
  WholeFileWriter& writer =
      file.writer.emplace(rename.folder(), rename.name(), std::string(kNewVersionStem));
  Status status = writer.status();
  if (status == ERROR_SUCCESS) status = write(writer.descriptor());
  if (status == ERROR_SUCCESS) status = writer.prepare();
  rename.noted().newName = writer.preparedName();
  if (status == ERROR_SUCCESS) {
    status = stampOf(rename.folder(), rename.noted().newName, rename.noted().after);
  }
  return fail(file.path, status);
}

// The caller's check, and that nobody has touched the old files meanwhile.
Status Change::check(const std::function<Status()>& check) {
  const Status status = check ? check() : ERROR_SUCCESS;
  if (status != ERROR_SUCCESS) return fail(path_, status);
  for (const File& file : files_) {
    if (file.rename.state() == FileRename::State::Ready) continue;
    return fail(file.path, ERROR_SHARING_VIOLATION);
  }
  return ERROR_SUCCESS;
}

Status Change::decide() {
  if (files_.size() < 2) return ERROR_SUCCESS;
  std::vector<NotedFile> noted;
  for (const File& file : files_) noted.push_back(file.rename.noted());
  Status status = flush();
  if (status == ERROR_SUCCESS) {
    status = replaceWholeFile(folder_.get(), std::string(kNoteName), encodeNote(noted),
                              std::string(kNewVersionStem));
  }
  return fail(path_ / kNoteName, status);
}

Status Change::renameAll() {
  for (File& file : files_) {
    const Status status = file.rename.rename();
    if (status != ERROR_SUCCESS) return fail(file.path, status);
  }
  return fail(path_, flush());
}

Status Change::flush() {
  for (const File& file : files_) {
    const Status status = flushFolder(file.rename.folder());
    if (status != ERROR_SUCCESS) return status;
  }
  return ERROR_SUCCESS;
}

// After a failure: the old files again, then the note goes, then (with the writers) the new
// versions. What cannot be taken back goes on instead.
void Change::takeBack() {
  bool possible = std::all_of(files_.begin(), files_.end(), [](const File& file) {
    return !file.rename.renamed() || file.rename.canTakeBack();
  });
  for (auto file = files_.rbegin(); possible && file != files_.rend(); ++file) {
    if (file->rename.renamed()) possible = file->rename.takeBack() == ERROR_SUCCESS;
  }
  if (possible) {
    // A note that stays tells of new versions that are gone, and of nothing else.
    if (files_.size() > 1 && folder_) (void)removeNote(folder_.get());
    return;
  }
  for (File& file : files_) {
    if (file.writer) file.writer->keep();
  }
  message_ += " The change has begun, and is finished when this machine is changed next.";
}

// After success. What cannot be removed is removed by the next change.
void Change::settle() {
  for (File& file : files_) {
    (void)file.rename.removeOld();
    file.writer->keep();
  }
  if (files_.size() > 1) (void)removeNote(folder_.get());
}

}  // namespace

void FileSet::add(fs::path file, Writer write) {
  entries_.push_back({std::move(file), std::move(write)});
}

Status FileSet::commit(std::string& message) {
  message.clear();
  if (entries_.empty()) return ERROR_SUCCESS;
  Change change(folder_, message);
  Status status = change.open();
  for (const Entry& entry : entries_) {
    if (status == ERROR_SUCCESS) status = change.locate(entry.file);
  }
  for (std::size_t i = 0; status == ERROR_SUCCESS && i < entries_.size(); ++i) {
    status = change.prepare(i, entries_[i].write);
  }
  if (status == ERROR_SUCCESS) status = change.check(check_);
  if (status != ERROR_SUCCESS) return status;
  status = change.decide();
  if (status == ERROR_SUCCESS) status = change.renameAll();
  if (status == ERROR_SUCCESS) {
    change.settle();
  } else {
    change.takeBack();
  }
  return status;
}

fs::path FileSet::current(const fs::path& folder, const fs::path& file) {
  struct stat note {};
  if (::lstat((folder / kNoteName).c_str(), &note) != 0) return file;
  const FileDescriptor opened = openFolder(folder);
  InterruptedChange change;
  std::string path;
  if (!opened || pathBelow(folder, file, path) != ERROR_SUCCESS ||
      change.read(opened.get()) != ERROR_SUCCESS) {
    return file;
  }
  const std::string newVersion = change.newVersionOf(path);
  return newVersion.empty() ? file : folder / newVersion;
}

Status FileSet::finishInterrupted(const fs::path& folder, std::string& message) {
  message.clear();
  const FileDescriptor opened = openFolder(folder);
  if (!opened) {
    const Status status = statusOfOpen(errno);
    message = fmt::format("{}: {}.", folder.string(), describeStatus(status));
    return status;
  }
  InterruptedChange change;
  Status status = change.read(opened.get());
  if (status == ERROR_SUCCESS) {
    status = change.finish(opened.get(), message);
    if (status != ERROR_SUCCESS) return status;
  } else if (status != ERROR_FILE_NOT_FOUND) {
    message = fmt::format(
        "{}: it tells of a change that was cut off, but cannot be read: {}. Compare the files of "
        "this machine with your backup, then delete it.",
        (folder / kNoteName).string(), describeStatus(status));
    return status;
  }
  // They take room and do no harm; the next change tries again.
  (void)removeOrphans(opened.get());
  return ERROR_SUCCESS;
}

}  // namespace korvex::platform
