// Renaming one file of a change, there and back.
#include "platform/hives/file_rename.h"

#include <fcntl.h>
#include <stdio.h>

#include <cerrno>

#include "platform/common/host_folder.h"
#include "platform/common/whole_file.h"

namespace korvex::platform {
namespace {

bool isUnsupported(int error) {
  return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == ENOTTY;
}

Status removeName(int folder, const std::string& name) {
  if (::unlinkat(folder, name.c_str(), 0) == 0 || errno == ENOENT) return ERROR_SUCCESS;
  return statusOfErrno(errno);
}

}  // namespace

Status FileRename::locate(int machineFolder, std::string path) {
  noted_.path = std::move(path);
  folder_.reset(::fcntl(machineFolder, F_DUPFD_CLOEXEC, 0));
  if (!folder_) return statusOfErrno(errno);
  std::size_t at = 0;
  for (std::size_t end = 0; (end = noted_.path.find('/', at)) != std::string::npos; at = end + 1) {
    FileDescriptor next;
    const Status status = openSubFolder(folder_.get(), noted_.path.substr(at, end - at), next);
    folder_ = std::move(next);
    if (status != ERROR_SUCCESS) {
      return status == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : status;
    }
  }
  name_ = noted_.path.substr(at);
  return ERROR_SUCCESS;
}

FileRename::State FileRename::state() const {
  LastingStamp now;
  LastingStamp waiting;
  if (!folder_ || stampOf(folder_.get(), name_, now) != ERROR_SUCCESS ||
      stampOf(folder_.get(), noted_.newName, waiting) != ERROR_SUCCESS) {
    return State::Changed;
  }
  // Asked first: on hosts without numbers the old and the new version can look alike.
  if (now == noted_.before && waiting == noted_.after) return State::Ready;
  return now == noted_.after ? State::New : State::Changed;
}

Status FileRename::exchange() {
  const char* const from = noted_.newName.c_str();
  if (::renameat2(folder_.get(), from, folder_.get(), name_.c_str(), RENAME_EXCHANGE) != 0) {
    return isUnsupported(errno) ? ERROR_NOT_SUPPORTED : statusOfErrno(errno);
  }
  renamed_ = exchanged_ = true;
  LastingStamp old;
  if (stampOf(folder_.get(), noted_.newName, old) == ERROR_SUCCESS && old == noted_.before) {
    return ERROR_SUCCESS;
  }
  const Status status = takeBack();
  return status == ERROR_SUCCESS ? ERROR_SHARING_VIOLATION : status;
}

Status FileRename::rename() {
  const char* const from = noted_.newName.c_str();
  if (noted_.before.exists && noted_.before.number != 0) {
    const Status status = exchange();
    if (status != ERROR_NOT_SUPPORTED) return status;
  }
  bool done = false;
  if (!noted_.before.exists) {
    done = ::renameat2(folder_.get(), from, folder_.get(), name_.c_str(), RENAME_NOREPLACE) == 0;
    if (!done && errno == EEXIST) return ERROR_SHARING_VIOLATION;
    if (!done && !isUnsupported(errno)) return statusOfErrno(errno);
  }
  if (!done && ::renameat(folder_.get(), from, folder_.get(), name_.c_str()) != 0) {
    return statusOfErrno(errno);
  }
  renamed_ = true;
  return ERROR_SUCCESS;
}

Status FileRename::takeBack() {
  const unsigned how = exchanged_ ? RENAME_EXCHANGE : 0;
  if (::renameat2(folder_.get(), name_.c_str(), folder_.get(), noted_.newName.c_str(), how) != 0) {
    return statusOfErrno(errno);
  }
  renamed_ = exchanged_ = false;
  return ERROR_SUCCESS;
}

Status FileRename::removeOld() {
  LastingStamp old;
  const Status status = stampOf(folder_.get(), noted_.newName, old);
  if (status != ERROR_SUCCESS || !old.exists || !(old == noted_.before)) return status;
  return removeName(folder_.get(), noted_.newName);
}

Status FileRename::leave(std::string& name) {
  LastingStamp waiting;
  if (!folder_ || stampOf(folder_.get(), noted_.newName, waiting) != ERROR_SUCCESS ||
      !(waiting == noted_.after)) {
    return ERROR_FILE_NOT_FOUND;
  }
  const std::size_t digits = kOwnFilePrefix.size() + kNewVersionStem.size();
  name = std::string(kLeftVersionPrefix) + noted_.newName.substr(digits);
  if (::renameat(folder_.get(), noted_.newName.c_str(), folder_.get(), name.c_str()) == 0) {
    return ERROR_SUCCESS;
  }
  return statusOfErrno(errno);
}

}  // namespace korvex::platform
