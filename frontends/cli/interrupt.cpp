// Signals held back instead of handled: a handler would need a global variable.
#include "cli/interrupt.h"

#include <ctime>

namespace korvex::cli {

Interrupt::Interrupt() {
  sigemptyset(&signals_);
  sigaddset(&signals_, SIGINT);
  sigaddset(&signals_, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals_, &before_);
}

Interrupt::~Interrupt() {
  const timespec now{};
  while (asked() && sigtimedwait(&signals_, nullptr, &now) > 0) {
  }
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

bool Interrupt::asked() const {
  sigset_t pending{};
  sigpending(&pending);
  return sigismember(&pending, SIGINT) == 1 || sigismember(&pending, SIGTERM) == 1;
}

}  // namespace korvex::cli
