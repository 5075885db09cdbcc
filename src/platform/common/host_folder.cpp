// Looking up names in a host folder as Windows would.
#include "platform/common/host_folder.h"

#include <dirent.h>
#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <memory>

#include "platform/common/short_names.h"
#include "platform/common/whole_file.h"
#include "platform/common/windows_path.h"
#include "platform/text/text.h"

namespace korvex::platform {
namespace {

constexpr off_t kLargestFile = off_t{1} << 29;
constexpr int kFileFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool isOwnName(std::string_view name) {
  return sameName(name.substr(0, kOwnFilePrefix.size()), kOwnFilePrefix);
}

bool isPartOfMachine(mode_t mode) { return S_ISREG(mode) || S_ISDIR(mode); }

// Calls visit(name, d_type) for all but "." and "..", until it returns false.
template <typename Visit>
Status forEachName(int folder, Visit visit) {
  // A stream of its own: the position of the caller's descriptor stays.
  FileDescriptor own(::openat(folder, ".", kFolderFlags));
  if (!own) return statusOfErrno(errno);
  const std::unique_ptr<DIR, int (*)(DIR*)> stream(::fdopendir(own.get()), ::closedir);
  if (!stream) return statusOfErrno(errno);
  own.release();
  for (;;) {
    errno = 0;
    const dirent* found = ::readdir(stream.get());
    if (found == nullptr) return statusOfErrno(errno);
    const std::string_view name = found->d_name;
    if (name == "." || name == "..") continue;
    if (!visit(std::string(name), found->d_type)) return ERROR_SUCCESS;
  }
}

bool isFileOrFolder(int folder, const std::string& name, unsigned char type) {
  if (type != DT_UNKNOWN) return type == DT_REG || type == DT_DIR;
  struct stat status {};
  return ::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         isPartOfMachine(status.st_mode);
}

// The host name that a Windows name means where no file has just this one; "" where there is none.
Status searchName(int folder, std::string_view wanted, std::string& found) {
  const std::string folded = foldName(wanted);
  std::string other;  // a name that would match but is no part of the machine
  std::vector<std::string> names;
  const Status status = forEachName(folder, [&](const std::string& name, unsigned char type) {
    if (!isWindowsName(name) || isOwnName(name)) return true;
    const bool matches = foldName(name) == folded;
    if (!isFileOrFolder(folder, name, type)) {
      if (matches) other = name;
      return true;
    }
    if (matches && (found.empty() || name < found)) found = name;
    names.push_back(name);
    return true;
  });
  if (status != ERROR_SUCCESS || !found.empty()) return status;
  if (folded.find('~') != std::string::npos && isShortName(folded)) {
    const std::vector<std::string> shorts = shortNames(names);
    const auto match = std::find(shorts.begin(), shorts.end(), folded);
    if (match != shorts.end()) found = names[static_cast<std::size_t>(match - shorts.begin())];
  }
  if (found.empty()) found = other;
  return ERROR_SUCCESS;
}

}  // namespace

Status windowsNames(int folder, std::vector<std::string>& names) {
  names.clear();
  return forEachName(folder, [&](const std::string& name, unsigned char type) {
    if (isWindowsName(name) && !isOwnName(name) && isFileOrFolder(folder, name, type)) {
      names.push_back(name);
    }
    return true;
  });
}

Status statEntry(int folder, const std::string& name, HostEntry& entry) {
  if (::fstatat(folder, name.c_str(), &entry.status, AT_SYMLINK_NOFOLLOW) != 0) {
    return statusOfErrno(errno);
  }
  entry.name = name;
  return isPartOfMachine(entry.status.st_mode) ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

Status findEntry(int folder, std::string_view name, HostEntry& entry) {
  if (isOwnName(name)) return ERROR_ACCESS_DENIED;
  Status status = statEntry(folder, std::string(name), entry);
  if (status != ERROR_FILE_NOT_FOUND) return status;
  std::string found;
  status = searchName(folder, name, found);
  if (status != ERROR_SUCCESS) return status;
  return found.empty() ? ERROR_FILE_NOT_FOUND : statEntry(folder, found, entry);
}

Status isEmptyFolder(int folder, bool& empty) {
  empty = true;
  return forEachName(folder, [&](const std::string& name, unsigned char) {
    empty = isOwnName(name);
    return empty;
  });
}

Status removeOwnFiles(int folder, bool (*pick)(std::string_view name)) {
  std::vector<std::string> names;
  const Status status = forEachName(folder, [&](const std::string& name, unsigned char) {
    if (isOwnName(name) && (pick == nullptr || pick(name))) names.push_back(name);
    return true;
  });
  if (status != ERROR_SUCCESS) return status;
  for (const std::string& name : names) {
    if (::unlinkat(folder, name.c_str(), 0) != 0 && errno != ENOENT) return statusOfErrno(errno);
  }
  return ERROR_SUCCESS;
}

Status openSubFolder(int folder, const std::string& name, FileDescriptor& result) {
  result.reset(::openat(folder, name.c_str(), kFolderFlags));
  return result ? ERROR_SUCCESS : statusOfErrno(errno);
}

Status enterFolder(FileDescriptor& folder, std::string_view name) {
  HostEntry entry;
  FileDescriptor next;
  Status status = findEntry(folder.get(), name, entry);
  if (status == ERROR_SUCCESS && !entry.isFolder()) return ERROR_PATH_NOT_FOUND;
  if (status == ERROR_SUCCESS) status = openSubFolder(folder.get(), entry.name, next);
  folder = std::move(next);
  return status == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : status;
}

Status openRegularFile(int folder, const std::string& name, FileDescriptor& result) {
  // Asked before it is opened, because to open some devices is to use them; asked again after,
  // because another file may have come under the name.
  HostEntry entry;
  const Status status = statEntry(folder, name, entry);
  if (status != ERROR_SUCCESS) return status;
  if (entry.isFolder()) return ERROR_ACCESS_DENIED;
  result.reset(::openat(folder, name.c_str(), kFileFlags));
  if (!result || ::fstat(result.get(), &entry.status) != 0) return statusOfErrno(errno);
  return S_ISREG(entry.status.st_mode) ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

Status writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return statusOfErrno(written < 0 ? errno : ENOSPC);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return ERROR_SUCCESS;
}

Status readAll(int file, std::string& bytes) {
  bytes.clear();
  struct stat status {};
  if (::fstat(file, &status) != 0) return statusOfErrno(errno);
  if (status.st_size > kLargestFile) return ERROR_NOT_SUPPORTED;
  bytes.resize(static_cast<std::size_t>(status.st_size) + 1);
  std::size_t filled = 0;
  for (;;) {
    const ssize_t count = ::read(file, bytes.data() + filled, bytes.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      bytes.clear();
      return statusOfErrno(errno);
    }
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
    // It grows while it is read.
    if (filled == bytes.size()) bytes.resize(2 * bytes.size());
  }
  bytes.resize(filled);
  return ERROR_SUCCESS;
}

}  // namespace korvex::platform
