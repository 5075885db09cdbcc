// flock() on the folder; its holder as the kernel's list of locks tells it.
#include "platform/hives/folder_lock.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <thread>

#include "platform/common/whole_file.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds kPatience{5};
// Whoever only asks for the holder may hold the lock for a moment.
constexpr std::chrono::milliseconds kMoment{50};
constexpr std::chrono::milliseconds kPause{5};
constexpr std::string_view kLockFile = "lock";  // after kOwnFilePrefix
constexpr mode_t kLockFileMode = 0666;          // less the umask

// 0, or errno of the last try.
int lock(int file, int how, std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (::flock(file, how | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return errno;
    // Polled, since a blocking request has no time limit of its own.
    if (std::chrono::steady_clock::now() >= deadline) return EWOULDBLOCK;
    std::this_thread::sleep_for(kPause);
  }
  return 0;
}

// The host locks files only, or only what is open for writing.
bool cannotLockFolder(int error) {
  return error == EBADF || error == EINVAL || error == ENOTSUP || error == EISDIR ||
         error == ENOSYS || error == ENOLCK;
}

fs::path lockFileIn(const fs::path& folder) {
  return folder / (std::string(kOwnFilePrefix) + std::string(kLockFile));
}

Status statusOfOpen(int error) {
  return error == ENOENT ? ERROR_PATH_NOT_FOUND : statusOfErrno(error);
}

struct Lock {
  pid_t process = 0;
  unsigned major = 0;
  unsigned minor = 0;
  unsigned long number = 0;
};

// "1: FLOCK  ADVISORY  WRITE 23139 fe:00:247066 0 EOF"
bool parseLock(const std::string& line, Lock& lock) {
  return std::sscanf(line.c_str(), "%*d: FLOCK %*s WRITE %d %x:%x:%lu", &lock.process, &lock.major,
                     &lock.minor, &lock.number) == 4;
}

// Some file systems tell programs another device than the kernel's list does.
bool hasOpen(pid_t process, const struct stat& wanted) {
  std::error_code error;
  for (fs::directory_iterator file(fmt::format("/proc/{}/fd", process), error), end;
       !error && file != end; file.increment(error)) {
    struct stat open {};
    if (::stat(file->path().c_str(), &open) == 0 && open.st_dev == wanted.st_dev &&
        open.st_ino == wanted.st_ino) {
      return true;
    }
  }
  return false;
}

std::string describeProcess(pid_t process) {
  std::ifstream file(fmt::format("/proc/{}/comm", process));
  std::string name;
  if (process <= 0 || !std::getline(file, name)) return {};
  return fmt::format("{} (process {})", name, process);
}

// "" where the list has nobody whom this process can see.
std::string holderOf(const struct stat& locked) {
  std::ifstream list("/proc/locks");
  for (std::string line; std::getline(list, line);) {
    Lock lock;
    if (!parseLock(line, lock) || lock.number != locked.st_ino) continue;
    const bool sameDevice =
        lock.major == major(locked.st_dev) && lock.minor == minor(locked.st_dev);
    if (!sameDevice && !hasOpen(lock.process, locked)) continue;
    std::string name = describeProcess(lock.process);
    if (!name.empty()) return name;
  }
  return {};
}

}  // namespace

Status FolderLock::take(Wait wait) {
  if (held()) return ERROR_SUCCESS;
  const auto patience = wait == Wait::Yes ? std::chrono::milliseconds(kPatience) : kMoment;
  FileDescriptor file(::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!file) return statusOfOpen(errno);
  int error = lock(file.get(), LOCK_EX, patience);
  if (cannotLockFolder(error)) {
    file.reset(::open(lockFileIn(folder_).c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC,
                      kLockFileMode));
    if (!file) return statusOfOpen(errno);
    error = lock(file.get(), LOCK_EX, patience);
  }
  if (error == EWOULDBLOCK) return ERROR_BUSY;
  if (cannotLockFolder(error)) return ERROR_NOT_SUPPORTED;
  if (error == 0) descriptor_ = std::move(file);
  return statusOfErrno(error);
}

std::string FolderLock::holder() const {
  const fs::path lockFile = lockFileIn(folder_);
  constexpr int kFlags = O_RDONLY | O_NONBLOCK | O_CLOEXEC;
  for (const int descriptor : {::open(folder_.c_str(), kFlags | O_DIRECTORY),
                               ::open(lockFile.c_str(), kFlags | O_NOFOLLOW)}) {
    const FileDescriptor file(descriptor);
    struct stat facts {};
    if (!file || ::fstat(file.get(), &facts) != 0) continue;
    std::string name = holderOf(facts);
    if (!name.empty()) return name;
    // Holders in other containers are not in the list.
    if (lock(file.get(), LOCK_SH, {}) == EWOULDBLOCK) return "another program";
  }
  return {};
}

}  // namespace korvex::platform
