// Finding the lock file of a prefix's server, and asking the kernel who holds it.
#include "platform/wine/wine_server.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string_view>
#include <utility>

#include "platform/common/host_folder.h"
#include "platform/common/whole_file.h"

namespace korvex::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kNameFile = "wineserver";
constexpr std::size_t kLongestName = 255;
constexpr std::chrono::seconds kYoung{60};

struct flock serverLock() {
  struct flock lock = {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  lock.l_start = 0;
  lock.l_len = 1;
  return lock;
}

bool sameFolder(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

// A server uses no folder that others could have put there; nor do we believe one.
bool openPrivateFolder(int parent, const std::string& name, uid_t owner, FileDescriptor& folder) {
  struct stat facts {};
  return openSubFolder(parent, name, folder) == ERROR_SUCCESS &&
         ::fstat(folder.get(), &facts) == 0 && facts.st_uid == owner && (facts.st_mode & 077) == 0;
}

// What the prefix's own file names: one part of a path, or "".
std::string namedFolder(const fs::path& prefix) {
  const FileDescriptor folder(::open(prefix.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  FileDescriptor file;
  if (!folder || openRegularFile(folder.get(), std::string(kNameFile), file) != ERROR_SUCCESS) {
    return {};
  }
  std::string name(kLongestName + 1, '\0');
  const ssize_t length = ::read(file.get(), name.data(), name.size());
  name.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
  if (name.ends_with('\n')) name.pop_back();
  const bool isPart = name.size() <= kLongestName && name != "." && name != ".." &&
                      name.find('/') == std::string::npos && name.find('\0') == std::string::npos;
  return isPart ? name : std::string();
}

// A variable of a process as it was started; "" where it has none or cannot be asked.
std::string environmentOf(const fs::path& process, std::string_view name) {
  std::ifstream file(process / "environ", std::ios::binary);
  for (std::string entry; std::getline(file, entry, '\0');) {
    if (entry.size() > name.size() && entry.starts_with(name) && entry[name.size()] == '=') {
      return entry.substr(name.size() + 1);
    }
  }
  return {};
}

bool isWineProgram(const fs::path& process) {
  std::error_code error;
  return fs::read_symlink(process / "exe", error).filename().string().starts_with("wine");
}

bool usesPrefix(const fs::path& process, const struct stat& prefix) {
  std::string folder = environmentOf(process, "WINEPREFIX");
  if (folder.empty()) {
    const std::string home = environmentOf(process, "HOME");
    if (home.empty()) return false;
    folder = home + "/.wine";
  }
  // A container's own view of the path first.
  for (const fs::path& path : {fs::path((process / "root").string() + folder), fs::path(folder)}) {
    struct stat found {};
    if (::stat(path.c_str(), &found) == 0 && sameFolder(found, prefix)) return true;
  }
  return false;
}

bool isProcess(const fs::path& entry) {
  const std::string name = entry.filename().string();
  return std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool isUsedByProcess(const struct stat& prefix) {
  std::error_code error;
  for (fs::directory_iterator entry("/proc", error), end; !error && entry != end;
       entry.increment(error)) {
    struct stat facts {};
    if (isProcess(entry->path()) && ::stat(entry->path().c_str(), &facts) == 0 &&
        facts.st_uid == prefix.st_uid && isWineProgram(entry->path()) &&
        usesPrefix(entry->path(), prefix)) {
      return true;
    }
  }
  return false;
}

bool hasYoungFile(const fs::path& prefix) {
  const auto now = std::chrono::system_clock::now();
  for (const char* const name : {"system.reg", "user.reg", "userdef.reg"}) {
    struct stat facts {};
    if (::stat((prefix / name).c_str(), &facts) != 0) continue;
    const auto age = now - std::chrono::system_clock::from_time_t(facts.st_mtim.tv_sec);
    if (age < kYoung) return true;  // also one from the future, by another clock
  }
  return false;
}

}  // namespace

WineServer::WineServer(fs::path prefix, fs::path temporaryFolder)
    : prefix_(std::move(prefix)), temporaryFolder_(std::move(temporaryFolder)) {}

std::vector<fs::path> WineServer::temporaryFolders() const {
  if (!temporaryFolder_.empty()) return {temporaryFolder_};
  std::vector<fs::path> folders{"/tmp"};
  const char* const own = std::getenv("TMPDIR");
  if (own != nullptr && *own == '/' && folders.front() != own) folders.emplace_back(own);
  return folders;
}

std::vector<FileDescriptor> WineServer::lockFiles(int flags) const {
  std::vector<std::pair<std::int64_t, FileDescriptor>> found;
  struct stat prefix {};
  if (::stat(prefix_.c_str(), &prefix) != 0) return {};
  const std::string server = fmt::format("server-{:x}-{:x}", prefix.st_dev, prefix.st_ino);
  // Servers refuse the prefix of another user, so its owner is theirs.
  std::vector<std::string> names{fmt::format(".wine-{}", prefix.st_uid)};
  if (const std::string named = namedFolder(prefix_); !named.empty()) names.push_back(named);
  for (const fs::path& temporary : temporaryFolders()) {
    const FileDescriptor root(::open(temporary.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (const std::string& name : names) {
      FileDescriptor parent;
      FileDescriptor folder;
      struct stat facts {};
      if (!root || !openPrivateFolder(root.get(), name, prefix.st_uid, parent) ||
          !openPrivateFolder(parent.get(), server, prefix.st_uid, folder)) {
        continue;
      }
      FileDescriptor lock(
          ::openat(folder.get(), "lock", flags | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
      if (!lock || ::fstat(lock.get(), &facts) != 0 || !S_ISREG(facts.st_mode)) continue;
      // The folder changes as servers come and go.
      const std::int64_t used = ::fstat(folder.get(), &facts) == 0 ? facts.st_mtim.tv_sec : 0;
      found.emplace_back(used, std::move(lock));
    }
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const auto& left, const auto& right) { return left.first > right.first; });
  std::vector<FileDescriptor> locks;
  locks.reserve(found.size());
  for (auto& [used, lock] : found) locks.push_back(std::move(lock));
  return locks;
}

std::optional<pid_t> WineServer::process() const {
  for (const FileDescriptor& file : lockFiles(O_RDONLY)) {
    struct flock lock = serverLock();
    if (::fcntl(file.get(), F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK) return lock.l_pid;
  }
  return std::nullopt;
}

bool WineServer::mayRunUnseen() const {
  struct stat prefix {};
  if (::stat(prefix_.c_str(), &prefix) != 0) return false;
  if (isUsedByProcess(prefix)) return true;
  return lockFiles(O_RDONLY).empty() && hasYoungFile(prefix_);
}

Status WineServer::keepAway(FileDescriptor& lock) const {
  lock.reset();
  if (process()) return ERROR_BUSY;
  std::vector<FileDescriptor> files = lockFiles(O_RDWR);
  if (files.empty()) return ERROR_SUCCESS;
  FileDescriptor file = std::move(files.front());
  files.clear();  // before the lock: one of them may be the same file
  // A lock of the process, and none of the open file: "wineserver -k" signals the number that it
  // finds with the lock, and an open file's lock has -1 there, which would be every process.
  struct flock request = serverLock();
  if (::fcntl(file.get(), F_SETLK, &request) != 0) {
    return errno == EAGAIN || errno == EACCES ? ERROR_BUSY : statusOfErrno(errno);
  }
  lock = std::move(file);
  return ERROR_SUCCESS;
}

}  // namespace korvex::platform
