// The kernel's calls, with a counter before them.
#include "platform/hives/host_calls.h"

#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace korvex::test {

HostCalls& hostCalls() {
  static HostCalls calls;
  return calls;
}

namespace {

template <typename... Arguments>
long counted(long number, Arguments... arguments) {
  HostCalls& calls = hostCalls();
  const int turn = ++calls.count;
  if (turn == calls.killAt) ::kill(::getpid(), SIGKILL);
  if (turn == calls.failAt) {
    errno = EIO;
    return -1;
  }
  return ::syscall(number, arguments...);
}

}  // namespace
}  // namespace korvex::test

extern "C" {

int fsync(int file) { return static_cast<int>(korvex::test::counted(SYS_fsync, file)); }

int linkat(int from, const char* name, int to, const char* newName, int flags) noexcept {
  return static_cast<int>(korvex::test::counted(SYS_linkat, from, name, to, newName, flags));
}

int unlinkat(int folder, const char* name, int flags) noexcept {
  return static_cast<int>(korvex::test::counted(SYS_unlinkat, folder, name, flags));
}

int renameat2(int from, const char* name, int to, const char* newName, unsigned flags) noexcept {
  if (korvex::test::hostCalls().noExchange && flags != 0) {
    errno = EINVAL;
    return -1;
  }
  if (korvex::test::hostCalls().beforeExchange) korvex::test::hostCalls().beforeExchange();
  return static_cast<int>(korvex::test::counted(SYS_renameat2, from, name, to, newName, flags));
}

int renameat(int from, const char* name, int to, const char* newName) noexcept {
  return static_cast<int>(korvex::test::counted(SYS_renameat2, from, name, to, newName, 0));
}

int flock(int file, int how) noexcept {
  struct stat facts {};
  if (korvex::test::hostCalls().noFolderLocks && ::fstat(file, &facts) == 0 &&
      S_ISDIR(facts.st_mode)) {
    errno = EBADF;
    return -1;
  }
  return static_cast<int>(::syscall(SYS_flock, file, how));
}

}  // extern "C"
