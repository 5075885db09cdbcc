// Advisory locks on bytes of machine.json: who may move the write-ahead log into the database, and
// which Korvex changes the machine.
//
// They are open-file-description locks: each object is a holder of its own, also within one
// process, and the kernel drops its locks with it, whatever happens to the process.
#pragma once

#include <filesystem>

#include "platform/machine.h"

namespace korvex::platform {

enum class LockKind { Shared, Exclusive };

class MachineLock {
 public:
  // Readers that take registry.db for unchangeable hold this shared; a checkpoint is exclusive.
  static constexpr int kDatabaseByte = 0;
  static constexpr int kInstanceByte = 1;

  // Opens machineFile for reading only unless an exclusive lock is wanted later. Nothing is
  // written and no time stamp moves.
  MachineLock(const std::filesystem::path& machineFile, LockKind strongest);
  ~MachineLock();
  MachineLock(const MachineLock&) = delete;
  MachineLock& operator=(const MachineLock&) = delete;

  bool opened() const { return descriptor_ >= 0; }
  // False where another holds it; Wait::Yes tries for five seconds.
  bool take(int byte, LockKind kind, Wait wait);
  void release(int byte);

 private:
  int descriptor_;
};

}  // namespace korvex::platform
