// Open-file-description locks on machine.json.
#include "platform/embedded/machine_lock.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace korvex::platform {
namespace {

constexpr std::chrono::seconds kPatience{5};
constexpr std::chrono::milliseconds kPause{10};

struct flock oneByte(int byte, short type) {
  struct flock lock = {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  lock.l_start = byte;
  lock.l_len = 1;
  return lock;
}

}  // namespace

MachineLock::MachineLock(const std::filesystem::path& machineFile, LockKind strongest)
    : descriptor_(open(machineFile.c_str(),
                       (strongest == LockKind::Exclusive ? O_RDWR : O_RDONLY) | O_CLOEXEC)) {}

MachineLock::~MachineLock() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

bool MachineLock::take(int byte, LockKind kind, Wait wait) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  struct flock lock = oneByte(byte, kind == LockKind::Exclusive ? F_WRLCK : F_RDLCK);
  while (fcntl(descriptor_, F_OFD_SETLK, &lock) != 0) {
    // Polled, since a blocking request has no time limit of its own.
    if (errno != EAGAIN && errno != EACCES && errno != EINTR) return false;
    if (wait == Wait::No || std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(kPause);
  }
  return true;
}

void MachineLock::release(int byte) {
  struct flock lock = oneByte(byte, F_UNLCK);
  fcntl(descriptor_, F_OFD_SETLK, &lock);
}

}  // namespace korvex::platform
