// The files of a machine in its drive folders.
#include "platform/common/drive_folders.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <cstdio>
#include <iterator>
#include <optional>
#include <utility>

#include "platform/common/dos_attributes.h"
#include "platform/common/host_folder.h"
#include "platform/common/windows_path.h"
#include "platform/text/text.h"

namespace korvex::platform {
namespace {

constexpr mode_t kNewFileMode = 0666;  // less the umask, as the next
constexpr mode_t kNewFolderMode = 0777;
constexpr std::size_t kBlockSize = std::size_t{256} * 1024;

Status flushFolder(const FileDescriptor& folder) {
  // Some network file systems cannot flush a folder.
  return ::fsync(folder.get()) == 0 || errno == EINVAL ? ERROR_SUCCESS : statusOfErrno(errno);
}

Status readBlocks(int from, const std::function<Status(std::string_view)>& take) {
  std::string block(kBlockSize, '\0');
  for (;;) {
    const ssize_t count = ::read(from, block.data(), block.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return statusOfErrno(errno);
    if (count == 0) return ERROR_SUCCESS;
    const Status status = take(std::string_view(block).substr(0, static_cast<std::size_t>(count)));
    if (status != ERROR_SUCCESS) return status;
  }
}

Status pour(int from, WholeFileWriter& to) {
  const Status status = readBlocks(from, [&to](std::string_view piece) { return to.write(piece); });
  return status == ERROR_SUCCESS ? to.status() : status;
}

bool sameFile(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool sameFolder(const FileDescriptor& left, const FileDescriptor& right) {
  struct stat leftStatus {};
  struct stat rightStatus {};
  return ::fstat(left.get(), &leftStatus) == 0 && ::fstat(right.get(), &rightStatus) == 0 &&
         sameFile(leftStatus, rightStatus);
}

}  // namespace

struct DriveFolders::Place {
  WindowsPath path;
  FileDescriptor folder;
  HostEntry entry;  // its name is the host's where found, else the one given
  bool found = false;

  bool isRoot() const { return path.parts.empty(); }
  const std::string& name() const { return entry.name; }
};

DriveFolders::DriveFolders(Map drives, DriveOptions options)
    : drives_(std::move(drives)), options_(options) {}

Status DriveFolders::openDrive(char drive, FileDescriptor& folder) const {
  const auto found = drives_.find(drive);
  if (found == drives_.end()) return ERROR_PATH_NOT_FOUND;
  folder.reset(::open(found->second.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder) return ERROR_SUCCESS;
  return errno == ENOENT || errno == ENOTDIR ? ERROR_NOT_READY : statusOfErrno(errno);
}

// Success also where the last name is missing; the root of a drive is found as ".".
Status DriveFolders::locate(std::string_view path, Place& place) const {
  Status status = parseWindowsPath(path, place.path);
  if (status == ERROR_SUCCESS) status = openDrive(place.path.drive, place.folder);
  const std::vector<std::string>& parts = place.path.parts;
  for (std::size_t i = 0; status == ERROR_SUCCESS && i + 1 < parts.size(); ++i) {
    status = enterFolder(place.folder, parts[i]);
  }
  if (status != ERROR_SUCCESS) return status;
  const std::string name = place.isRoot() ? "." : parts.back();
  status = place.isRoot() ? statEntry(place.folder.get(), name, place.entry)
                          : findEntry(place.folder.get(), name, place.entry);
  place.found = status == ERROR_SUCCESS;
  if (status == ERROR_FILE_NOT_FOUND) {
    place.entry.name = name;
    return ERROR_SUCCESS;
  }
  // A file's name with a separator behind it is no name.
  const bool malformed = place.found && place.path.trailingSeparator && !place.entry.isFolder();
  return malformed ? ERROR_INVALID_NAME : status;
}

Status DriveFolders::locateExisting(std::string_view path, Place& place) const {
  const Status status = locate(path, place);
  return status == ERROR_SUCCESS && !place.found ? ERROR_FILE_NOT_FOUND : status;
}

Status DriveFolders::locateFile(std::string_view path, Place& place) const {
  const Status status = locateExisting(path, place);
  return status == ERROR_SUCCESS && place.entry.isFolder() ? ERROR_ACCESS_DENIED : status;
}

Status DriveFolders::attributesOf(const Place& place, std::uint32_t& attributes) const {
  return DosAttributes(place.folder.get(), options_.extendedAttributes)
      .read(place.entry, attributes);
}

Status DriveFolders::checkNotReadOnly(const Place& place) const {
  std::uint32_t attributes = 0;
  const Status status = attributesOf(place, attributes);
  if (status != ERROR_SUCCESS) return status;
  return (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

// Whether a file may be made or replaced there.
Status DriveFolders::checkForWriting(const Place& place) const {
  if (place.found) return place.entry.isFolder() ? ERROR_ACCESS_DENIED : checkNotReadOnly(place);
  if (place.path.trailingSeparator) return ERROR_INVALID_NAME;
  // A file that went by other hands must not leave its attributes to a new one.
  return DosAttributes(place.folder.get(), options_.extendedAttributes).forget(place.name());
}

Status DriveFolders::locateForWriting(std::string_view path, Place& place) const {
  if (options_.readOnly) return ERROR_WRITE_PROTECT;
  const Status status = locate(path, place);
  return status == ERROR_SUCCESS ? checkForWriting(place) : status;
}

Status DriveFolders::attributes(std::string_view path, std::uint32_t& attributes) {
  Place place;
  const Status status = locateExisting(path, place);
  return status == ERROR_SUCCESS ? attributesOf(place, attributes) : status;
}

Status DriveFolders::setAttributes(std::string_view path, std::uint32_t attributes) {
  if (options_.readOnly) return ERROR_WRITE_PROTECT;
  Place place;
  const Status status = locateExisting(path, place);
  if (status != ERROR_SUCCESS) return status;
  return DosAttributes(place.folder.get(), options_.extendedAttributes)
      .write(place.entry, attributes);
}

Status DriveFolders::openToRead(std::string_view path, FileDescriptor& file) {
  Place place;
  const Status status = locateFile(path, place);
  return status == ERROR_SUCCESS ? openRegularFile(place.folder.get(), place.name(), file) : status;
}

Status DriveFolders::read(std::string_view path, std::string& bytes) {
  FileDescriptor file;
  const Status status = openToRead(path, file);
  return status == ERROR_SUCCESS ? readAll(file.get(), bytes) : status;
}

Status DriveFolders::readPieces(std::string_view path,
                                const std::function<Status(std::string_view)>& take) {
  FileDescriptor file;
  const Status status = openToRead(path, file);
  return status == ERROR_SUCCESS ? readBlocks(file.get(), take) : status;
}

Status DriveFolders::freeSpace(std::string_view path, std::uint64_t& bytes) {
  WindowsPath parsed;
  FileDescriptor folder;
  Status status = parseWindowsPath(path, parsed);
  if (status == ERROR_SUCCESS) status = openDrive(parsed.drive, folder);
  // A folder of the drive may be a file system of its own: the deepest one that is there counts.
  for (const std::string& part : parsed.parts) {
    if (status != ERROR_SUCCESS || enterFolder(folder, part) != ERROR_SUCCESS) break;
  }
  struct statvfs space {};
  if (status == ERROR_SUCCESS && ::fstatvfs(folder.get(), &space) != 0) {
    status = statusOfErrno(errno);
  }
  if (status == ERROR_SUCCESS) bytes = std::uint64_t{space.f_bavail} * space.f_frsize;
  return status;
}

std::string DriveFolders::pathOfHost(std::string_view hostPath) {
  std::error_code error;
  const auto wanted = std::filesystem::weakly_canonical(hostPath, error);
  if (error) return {};
  std::string best;
  std::size_t bestParts = 0;
  for (const auto& [drive, folder] : drives_) {
    const auto root = std::filesystem::canonical(folder, error);
    if (error) continue;
    const auto below = wanted.lexically_relative(root);
    if (below.empty() || *below.begin() == "..") continue;
    const auto parts = static_cast<std::size_t>(std::distance(root.begin(), root.end()));
    if (!best.empty() && parts <= bestParts) continue;
    bestParts = parts;
    best = std::string(1, drive) + ":";
    for (const auto& part : below) {
      if (part != ".") best += '\\' + part.string();
    }
    if (best.size() == 2) best += '\\';
  }
  return best;
}

Status DriveFolders::openToReplace(std::string_view path,
                                   std::unique_ptr<WholeFileWriter>& writer) {
  Place place;
  const Status status = locateForWriting(path, place);
  if (status != ERROR_SUCCESS) return status;
  writer = std::make_unique<WholeFileWriter>(place.folder.get(), place.name());
  return writer->status();
}

Status DriveFolders::replace(std::string_view path, std::string_view bytes) {
  std::unique_ptr<WholeFileWriter> writer;
  const Status status = openToReplace(path, writer);
  if (status != ERROR_SUCCESS) return status;
  writer->write(bytes);
  return writer->commit();
}

Status DriveFolders::append(std::string_view path, std::string_view bytes) {
  Place place;
  Status status = locateForWriting(path, place);
  if (status != ERROR_SUCCESS) return status;
  FileDescriptor file(
      ::openat(place.folder.get(), place.name().c_str(),
               O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC,
               kNewFileMode));
  struct stat before {};
  if (!file || ::fstat(file.get(), &before) != 0) return statusOfErrno(errno);
  if (!S_ISREG(before.st_mode)) return ERROR_ACCESS_DENIED;
  status = writeAll(file.get(), bytes);
  // No half line stays where the disk was full.
  if (status != ERROR_SUCCESS) (void)!::ftruncate(file.get(), before.st_size);
  return status;
}

Status DriveFolders::copy(std::string_view from, std::string_view to, Overwrite overwrite) {
  if (options_.readOnly) return ERROR_WRITE_PROTECT;
  Place source;
  Place target;
  Status status = locateFile(from, source);
  if (status == ERROR_SUCCESS) status = locate(to, target);
  if (status != ERROR_SUCCESS) return status;
  if (target.found && !target.entry.isFolder()) {
    if (overwrite == Overwrite::No) return ERROR_FILE_EXISTS;
    if (sameFile(source.entry.status, target.entry.status)) return ERROR_SHARING_VIOLATION;
  }
  status = checkForWriting(target);
  return status == ERROR_SUCCESS ? copyFile(source, target) : status;
}

// With the attributes and the time of the last change, as Windows copies.
Status DriveFolders::copyFile(const Place& from, const Place& to) const {
  FileDescriptor file;
  Status status = openRegularFile(from.folder.get(), from.name(), file);
  std::uint32_t attributes = 0;
  if (status == ERROR_SUCCESS) status = attributesOf(from, attributes);
  if (status != ERROR_SUCCESS) return status;
  WholeFileWriter writer(to.folder.get(), to.name());
  status = pour(file.get(), writer);
  DosAttributes targetAttributes(to.folder.get(), options_.extendedAttributes);
  bool finished = false;
  if (status == ERROR_SUCCESS) {
    status = targetAttributes.prepare(writer.descriptor(), attributes, finished);
  }
  if (status != ERROR_SUCCESS) return status;
  const timespec times[2] = {{0, UTIME_OMIT}, from.entry.status.st_mtim};
  if (::futimens(writer.descriptor(), times) != 0) return statusOfErrno(errno);
  status = writer.commit();
  return status == ERROR_SUCCESS && !finished ? targetAttributes.finish(to.name(), attributes)
                                              : status;
}

Status DriveFolders::move(std::string_view from, std::string_view to) {
  if (options_.readOnly) return ERROR_WRITE_PROTECT;
  Place source;
  Place target;
  Status status = locateExisting(from, source);
  if (status == ERROR_SUCCESS) status = locate(to, target);
  if (status != ERROR_SUCCESS) return status;
  if (source.isRoot()) return ERROR_ACCESS_DENIED;
  if (target.found) {
    const bool sameEntry = !target.isRoot() && sameFolder(source.folder, target.folder) &&
                           sameFile(source.entry.status, target.entry.status) &&
                           sameName(source.name(), target.name());
    if (!sameEntry) return ERROR_ALREADY_EXISTS;
    // The new name of the same file may differ in case; its short name changes nothing.
    const std::string& wanted = target.path.parts.back();
    if (!sameName(wanted, source.name()) || wanted == source.name()) return ERROR_SUCCESS;
    target.entry.name = wanted;
  } else if (target.path.trailingSeparator && !source.entry.isFolder()) {
    return ERROR_INVALID_NAME;
  }
  return renameTo(source, target);
}

Status DriveFolders::renameTo(const Place& from, const Place& to) const {
  DosAttributes oldAttributes(from.folder.get(), options_.extendedAttributes);
  DosAttributes newAttributes(to.folder.get(), options_.extendedAttributes);
  std::optional<std::uint32_t> beside;
  Status status = oldAttributes.beside(from.name(), beside);
  if (status == ERROR_SUCCESS) status = newAttributes.forget(to.name());
  if (status != ERROR_SUCCESS) return status;

  const auto rename = [&](unsigned flags) {
    return ::renameat2(from.folder.get(), from.name().c_str(), to.folder.get(), to.name().c_str(),
                       flags) == 0;
  };
  bool renamed = rename(to.found ? 0 : RENAME_NOREPLACE);
  // Not every file system can refuse to replace; that nothing is there has been seen before.
  if (!renamed && (errno == EINVAL || errno == ENOSYS)) renamed = rename(0);
  if (!renamed) {
    if (errno == EINVAL) return ERROR_SHARING_VIOLATION;  // a folder into itself
    if (errno != EXDEV) return statusOfErrno(errno);
    if (from.entry.isFolder()) return ERROR_ACCESS_DENIED;
    status = copyFile(from, to);
    if (status != ERROR_SUCCESS) return status;
    if (::unlinkat(from.folder.get(), from.name().c_str(), 0) != 0) return statusOfErrno(errno);
    beside.reset();  // the copy has them already
  }
  if (beside) {
    HostEntry entry = from.entry;
    entry.name = to.name();
    status = newAttributes.write(entry, *beside);
  }
  const Status forgotten =
      DosAttributes(from.folder.get(), options_.extendedAttributes).forget(from.name());
  if (status == ERROR_SUCCESS) status = forgotten;
  if (status == ERROR_SUCCESS) status = flushFolder(to.folder);
  return status == ERROR_SUCCESS ? flushFolder(from.folder) : status;
}

Status DriveFolders::remove(std::string_view path) {
  if (options_.readOnly) return ERROR_WRITE_PROTECT;
  Place place;
  Status status = locateFile(path, place);
  if (status == ERROR_SUCCESS) status = checkNotReadOnly(place);
  if (status != ERROR_SUCCESS) return status;
  if (::unlinkat(place.folder.get(), place.name().c_str(), 0) != 0) return statusOfErrno(errno);
  status = DosAttributes(place.folder.get(), options_.extendedAttributes).forget(place.name());
  return status == ERROR_SUCCESS ? flushFolder(place.folder) : status;
}

Status DriveFolders::createFolder(std::string_view path) {
  if (options_.readOnly) return ERROR_WRITE_PROTECT;
  WindowsPath parsed;
  FileDescriptor folder;
  Status status = parseWindowsPath(path, parsed);
  if (status == ERROR_SUCCESS) status = openDrive(parsed.drive, folder);
  bool made = false;
  for (std::size_t i = 0; status == ERROR_SUCCESS && i < parsed.parts.size(); ++i) {
    HostEntry entry;
    const std::string& name = parsed.parts[i];
    status = findEntry(folder.get(), name, entry);
    made = status == ERROR_FILE_NOT_FOUND;
    if (made) {
      status = DosAttributes(folder.get(), options_.extendedAttributes).forget(name);
      if (status != ERROR_SUCCESS) return status;
      if (::mkdirat(folder.get(), name.c_str(), kNewFolderMode) != 0) return statusOfErrno(errno);
      status = flushFolder(folder);
    } else if (status == ERROR_SUCCESS && i + 1 == parsed.parts.size()) {
      return ERROR_ALREADY_EXISTS;
    }
    if (status == ERROR_SUCCESS) status = enterFolder(folder, name);
  }
  return status == ERROR_SUCCESS && !made ? ERROR_ALREADY_EXISTS : status;
}

Status DriveFolders::removeFolder(std::string_view path) {
  if (options_.readOnly) return ERROR_WRITE_PROTECT;
  Place place;
  Status status = locateExisting(path, place);
  if (status != ERROR_SUCCESS) return status;
  if (place.isRoot() || !place.entry.isFolder()) return ERROR_ACCESS_DENIED;
  status = checkNotReadOnly(place);
  FileDescriptor folder;
  if (status == ERROR_SUCCESS) status = openSubFolder(place.folder.get(), place.name(), folder);
  bool empty = false;
  if (status == ERROR_SUCCESS) status = isEmptyFolder(folder.get(), empty);
  if (status != ERROR_SUCCESS) return status;
  if (!empty) return ERROR_DIR_NOT_EMPTY;
  status = removeOwnFiles(folder.get());
  if (status != ERROR_SUCCESS) return status;
  if (::unlinkat(place.folder.get(), place.name().c_str(), AT_REMOVEDIR) != 0) {
    return errno == EEXIST ? ERROR_DIR_NOT_EMPTY : statusOfErrno(errno);
  }
  status = DosAttributes(place.folder.get(), options_.extendedAttributes).forget(place.name());
  return status == ERROR_SUCCESS ? flushFolder(place.folder) : status;
}

}  // namespace korvex::platform
