// By what a file of a machine is known again, also after a kill and a restart of the host.
#pragma once

#include <cstdint>
#include <string>

#include "platform/status.h"

namespace korvex::platform {

struct LastingStamp {
  bool exists = false;
  // The inode; 0 where the host gives a file another number after each mount, and it is not
  // compared.
  std::uint64_t number = 0;
  std::int64_t size = 0;
  std::int64_t seconds = 0;
  std::int64_t nanoseconds = 0;

  bool operator==(const LastingStamp&) const = default;
};

// Follows no link; folder is a descriptor. A missing file is a stamp too; 5 for anything but a
// regular file.
Status stampOf(int folder, const std::string& name, LastingStamp& stamp);

}  // namespace korvex::platform
