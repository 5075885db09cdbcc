// Stamps of files, from what the host tells without reading them.
#include "platform/hives/lasting_stamp.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include <cerrno>

#include "platform/common/whole_file.h"

namespace korvex::platform {
namespace {

constexpr std::uint32_t kExfatMagic = 0x2011BAB0;
constexpr std::uint32_t kFuseMagic = 0x65735546;

// FAT has no numbers of its own; behind FUSE nobody knows.
bool hasLastingNumbers(int folder) {
  struct statfs system {};
  if (::fstatfs(folder, &system) != 0) return false;
  const auto type = static_cast<std::uint32_t>(system.f_type);
  return type != MSDOS_SUPER_MAGIC && type != kExfatMagic && type != kFuseMagic;
}

}  // namespace

Status stampOf(int folder, const std::string& name, LastingStamp& stamp) {
  stamp = {};
  struct stat status {};
  if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return errno == ENOENT ? ERROR_SUCCESS : statusOfErrno(errno);
  }
  if (!S_ISREG(status.st_mode)) return ERROR_ACCESS_DENIED;
  stamp.exists = true;
  if (hasLastingNumbers(folder)) stamp.number = status.st_ino;
  stamp.size = status.st_size;
  stamp.seconds = status.st_mtim.tv_sec;
  stamp.nanoseconds = status.st_mtim.tv_nsec;
  return ERROR_SUCCESS;
}

}  // namespace korvex::platform
