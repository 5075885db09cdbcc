// The calls by which this program changes the host's files, counted, and failed or cut off at one
// of them. They stand in for the C library's in this test program alone.
#pragma once

#include <functional>

namespace korvex::test {

struct HostCalls {
  int failAt = 0;                             // the n-th call fails, as on a disk with a fault
  int killAt = 0;                             // before the n-th call the process dies
  bool noExchange = false;                    // a host that cannot exchange two names
  bool noFolderLocks = false;                 // or lock a folder
  std::function<void()> beforeExchange = {};  // what others do at that very moment
  int count = 0;
};

// Of this process; children begin with a copy.
HostCalls& hostCalls();

}  // namespace korvex::test
