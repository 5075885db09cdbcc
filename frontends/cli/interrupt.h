// Ctrl-C while something must not be left half done: it is kept until the work asks for it.
#pragma once

#include <csignal>

#include "backup/restore_offer.h"

namespace korvex::cli {

class Interrupt {
 public:
  Interrupt();
  // What came and was not asked for is forgotten: the work is done.
  ~Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;

  bool asked() const;
  // For work that tells how far it is: goes on until asked for its end.
  backup::Progress progress() const {
    return [this](int) { return !asked(); };
  }

 private:
  sigset_t signals_{};
  sigset_t before_{};
};

}  // namespace korvex::cli
