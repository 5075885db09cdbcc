// Writing a file beside the old one and renaming it over.
#include "platform/common/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <random>
#include <vector>

namespace korvex::platform {
namespace {

constexpr mode_t kNewFileMode = 0666;  // less the umask
constexpr int kAttempts = 100;

// Extended attributes outside user.* (labels, ACLs) are kept where the host lets us.
int copyExtendedAttributes(int from, int to) {
  const ssize_t listSize = ::flistxattr(from, nullptr, 0);
  if (listSize <= 0) return 0;
  std::vector<char> names(static_cast<std::size_t>(listSize));
  const ssize_t listed = ::flistxattr(from, names.data(), names.size());
  std::vector<char> value(65536);  // the kernel's own limit
  for (ssize_t at = 0; at < listed;) {
    const std::string name = names.data() + at;
    at += static_cast<ssize_t>(name.size()) + 1;
    const ssize_t size = ::fgetxattr(from, name.c_str(), value.data(), value.size());
    if (size < 0) continue;
    if (::fsetxattr(to, name.c_str(), value.data(), static_cast<std::size_t>(size), 0) != 0 &&
        name.starts_with("user.")) {
      return errno;
    }
  }
  return 0;
}

int changeOwner(int file, const struct stat& old) {
  struct stat now {};
  if (::fstat(file, &now) != 0) return errno;
  if (now.st_uid == old.st_uid && now.st_gid == old.st_gid) return 0;
  if (::fchown(file, old.st_uid, old.st_gid) == 0) return 0;
  // Only root gives files away; the group is often still ours to give.
  if (errno == EPERM)
    (void)!::fchown(file, static_cast<uid_t>(-1), old.st_gid);
  else
    return errno;
  return 0;
}

int changeMode(int file, mode_t mode) {
  struct stat now {};
  if (::fstat(file, &now) != 0) return errno;
  // Hosts without modes refuse to set even the one that all files have.
  if ((now.st_mode & 07777) == mode) return 0;
  return ::fchmod(file, mode) == 0 ? 0 : errno;
}

}  // namespace

Status statusOfErrno(int error) {
  switch (error) {
    case 0:
      return ERROR_SUCCESS;
    case ENOENT:
      return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
      return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EISDIR:
    case ELOOP:
    case ENXIO:
      return ERROR_ACCESS_DENIED;
    case EROFS:
      return ERROR_WRITE_PROTECT;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return ERROR_DISK_FULL;
    case EEXIST:
      return ERROR_ALREADY_EXISTS;
    case ENOTEMPTY:
      return ERROR_DIR_NOT_EMPTY;
    case ENAMETOOLONG:
      return ERROR_FILENAME_EXCED_RANGE;
    case EILSEQ:
      return ERROR_INVALID_NAME;
    case EBUSY:
    case ETXTBSY:
      return ERROR_SHARING_VIOLATION;
    case ENOTSUP:
      return ERROR_NOT_SUPPORTED;
    default:
      return ERROR_GEN_FAILURE;
  }
}

WholeFileWriter::WholeFileWriter(const std::filesystem::path& file) {
  std::error_code ignored;
  std::filesystem::path target = file;
  if (std::filesystem::is_symlink(file, ignored)) {
    target = std::filesystem::weakly_canonical(file, ignored);
    if (ignored) target = file;
  }
  name_ = target.filename().string();
  const std::filesystem::path parent = target.parent_path();
  FileDescriptor folder(
      ::open(parent.empty() ? "." : parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) {
    status_ = errno == ENOENT ? ERROR_PATH_NOT_FOUND : statusOfErrno(errno);
    return;
  }
  start(folder.get());
}

WholeFileWriter::WholeFileWriter(int folder, std::string name, std::string stem)
    : name_(std::move(name)), stem_(std::move(stem)) {
  start(folder);
}

WholeFileWriter::~WholeFileWriter() {
  if (!temporaryName_.empty()) ::unlinkat(folder_.get(), temporaryName_.c_str(), 0);
}

void WholeFileWriter::start(int folder) {
  folder_.reset(::fcntl(folder, F_DUPFD_CLOEXEC, 0));
  if (!folder_) {
    fail(errno);
    return;
  }
  struct stat old {};
  const bool exists = ::fstatat(folder_.get(), name_.c_str(), &old, AT_SYMLINK_NOFOLLOW) == 0;
  const bool missing = !exists && errno == ENOENT;
  if (exists && !S_ISREG(old.st_mode)) {
    fail(EACCES);
  } else if (!missing && ::faccessat(folder_.get(), name_.c_str(), W_OK, AT_EACCESS) != 0) {
    fail(errno);
  } else {
    openTemporary();
    if (exists && status_ == ERROR_SUCCESS) inherit();
  }
}

std::string WholeFileWriter::newTemporaryName() const {
  std::random_device random;
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%08x%08x", random(), random());
  return std::string(kOwnFilePrefix) + stem_ + text.data();
}

// A file without a name vanishes by itself when the program dies; it is named just before the
// rename, through /proc. Where the host has no such files, a named one does.
void WholeFileWriter::openTemporary() {
  if (::access("/proc/self/fd", X_OK) == 0) {
    file_.reset(::openat(folder_.get(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, kNewFileMode));
    if (file_) return;
    if (errno != EOPNOTSUPP && errno != EISDIR && errno != ENOENT && errno != EINVAL) {
      fail(errno);
      return;
    }
  }
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const std::string name = newTemporaryName();
    file_.reset(
        ::openat(folder_.get(), name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode));
    if (file_) {
      temporaryName_ = name;
      return;
    }
    if (errno != EEXIST) break;
  }
  fail(errno);
}

void WholeFileWriter::inherit() {
  FileDescriptor old(::openat(folder_.get(), name_.c_str(),
                              O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status {};
  if (!old || ::fstat(old.get(), &status) != 0) {
    fail(errno);
    return;
  }
  int error = S_ISREG(status.st_mode) ? 0 : EACCES;
  if (error == 0) error = copyExtendedAttributes(old.get(), file_.get());
  if (error == 0) error = changeOwner(file_.get(), status);
  // Last, because a change of the owner drops mode bits.
  if (error == 0) error = changeMode(file_.get(), status.st_mode & 07777);
  if (error != 0) fail(error);
}

Status WholeFileWriter::fail(int error) {
  if (status_ == ERROR_SUCCESS) status_ = statusOfErrno(error == 0 ? EIO : error);
  return status_;
}

Status WholeFileWriter::write(std::string_view bytes) {
  while (status_ == ERROR_SUCCESS && !bytes.empty()) {
    const ssize_t written = ::write(file_.get(), bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      fail(errno);
    }
  }
  return status_;
}

bool WholeFileWriter::giveTemporaryName() {
  if (!temporaryName_.empty()) return true;
  const std::string link = "/proc/self/fd/" + std::to_string(file_.get());
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const std::string name = newTemporaryName();
    if (::linkat(AT_FDCWD, link.c_str(), folder_.get(), name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
      temporaryName_ = name;
      return true;
    }
    if (errno != EEXIST) return false;
  }
  return false;
}

Status WholeFileWriter::prepare() {
  if (status_ != ERROR_SUCCESS) return status_;
  return ::fsync(file_.get()) == 0 && giveTemporaryName() ? status_ : fail(errno);
}

Status WholeFileWriter::commit() {
  if (prepare() != ERROR_SUCCESS) return status_;
  if (::renameat(folder_.get(), temporaryName_.c_str(), folder_.get(), name_.c_str()) != 0) {
    return fail(errno);
  }
  temporaryName_.clear();
  file_.reset();
  return status_ = flushFolder(folder_.get());
}

Status replaceWholeFile(const std::filesystem::path& file, std::string_view bytes) {
  WholeFileWriter writer(file);
  writer.write(bytes);
  return writer.commit();
}

Status replaceWholeFile(int folder, const std::string& name, std::string_view bytes,
                        const std::string& stem) {
  WholeFileWriter writer(folder, name, stem);
  writer.write(bytes);
  return writer.commit();
}

Status flushFolder(int folder) {
  return ::fsync(folder) == 0 || errno == EINVAL ? ERROR_SUCCESS : statusOfErrno(errno);
}

}  // namespace korvex::platform
