// One lock on a machine's folder for the two that need it within one machine object: the claim of
// a window, and the store's own changes.
#pragma once

#include <string>
#include <utility>

#include "platform/hives/folder_lock.h"

namespace korvex::platform {

class CountedLock {
 public:
  explicit CountedLock(std::filesystem::path folder) : lock_(std::move(folder)) {}

  Status acquire(Wait wait) {
    const Status status = holders_ > 0 ? ERROR_SUCCESS : lock_.take(wait);
    if (status == ERROR_SUCCESS) ++holders_;
    return status;
  }
  void release() {
    if (holders_ > 0 && --holders_ == 0) lock_.release();
  }
  bool claimed = false;
  std::string holder() const { return lock_.holder(); }

 private:
  FolderLock lock_;
  int holders_ = 0;
};

}  // namespace korvex::platform
