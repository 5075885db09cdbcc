// Work in a process of its own, for tests of locks, kills and limits.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace korvex::test {

// Runs the work in a child; it ends with the work's result, or 99 after an exception.
class ChildProcess {
 public:
  explicit ChildProcess(const std::function<int()>& work) : id_(fork()) {
    if (id_ != 0) return;
    int result = 99;
    try {
      result = work();
    } catch (...) {
    }
    _exit(result);
  }
  ~ChildProcess() {
    if (id_ > 0) kill();
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // -1 where it did not end by itself.
  int wait() {
    int status = 0;
    const bool ended = waitpid(id_, &status, 0) == id_;
    id_ = 0;
    return ended && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  void kill() {
    ::kill(id_, SIGKILL);
    wait();
  }

 private:
  pid_t id_;
};

}  // namespace korvex::test
